#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "../files/FileSets.h"
#include "../record/Form.h"
#include "../record/RecordCursor.h"
#include "../support/Session.h"
#include "RestartSet.h"
#include "StepReader.h"

namespace lumbarn {

/// The form of a restart file, and whether it holds all steps.
struct RestartFileForm {
  Form form;
  bool unified = false;
};
/// Nothing for a file that is none: neither is its first record INTEHEAD or SEQNUM, nor does what follows
/// show it.
std::optional<RestartFileForm> formOfRestartFile(const std::string& path, Session& session);

/// Reads a restart file set: the loop over its files and steps.
class RestartSetReader {
 public:
  /// `form` is that of files that do not show theirs; `checkedUnified`: the file of the options is a unified
  /// one, whatever its name. The options take the files and limits that are really used.
  RestartSetReader(RestartSetOptions& options, const Form& form, bool checkedUnified, RestartSet& set,
                   Session& session)
      : options_(options), form_(form), checkedUnified_(checkedUnified), set_(set), session_(session) {}

  /// Replaces what the set has. False when the user cancels, and after damage, which is diagnosed, unless it
  /// is accepted; the steps that could be read are in the set then. A step that is not complete is skipped
  /// with a diagnosis. Throws Fault.
  bool read();

 private:
  bool chooseFiles();
  bool applyStepList();
  bool readFile(std::size_t entry);
  bool readSteps(RecordCursor& cursor, std::size_t entry);
  bool readStep(RecordCursor& cursor, std::size_t entry);
  std::unique_ptr<qvEclipseSEQUENCE> makeStep(const std::string& path);
  void noteLast(const qvEclipseSEQUENCE& step);
  bool keepStep(std::unique_ptr<qvEclipseSEQUENCE> step);
  void reportRepeats(const qvEclipseSEQUENCE& step);
  bool checkComplete(const qvEclipseSEQUENCE& step, const StepEnd& end, const RecordCursor& cursor,
                     bool last);
  void reportDamage(std::size_t entry, Diagnosis diagnosis);
  void noteDamage() { set_.qDamaged = failed_ = true; }

  RestartSetOptions& options_;
  Form form_;
  bool checkedUnified_;
  RestartSet& set_;
  Session& session_;
  StepLimits wanted_;
  bool atEnd_ = false;   // the unified file has no more records
  bool failed_ = false;  // something was damaged; a truncated last step is not
  bool stop_ = false;
  std::optional<StepParts> before_;  // of the last complete step
  std::uint64_t start_ = 0;          // byte offset of the step that is being read
  bool stepTwice_ = false;           // reported: a step number, or an array of a step, that occurs again
  bool arrayTwice_ = false;
  std::unordered_set<std::int32_t> numbers_;                     // of the steps that were kept
  std::vector<std::pair<std::string_view, std::size_t>> names_;  // of one grid's arrays: working memory
};

}  // namespace lumbarn
