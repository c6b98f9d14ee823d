#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../frame/Stream.h"
#include "FileCheck.h"

namespace lumbarn {

struct RunMember;
class RunState;

/// How much of the files a check reads.
struct CheckOptions {
  bool values = false;  ///< all data, not only headers and the first and last mark of each record
};

/// What the check of one file found.
struct CheckedFile : FileCheck {
  std::string path;
};

/// Checks the files of a run one after the other: whether their records are whole, and whether what they say
/// fits together. Throws Error, as questions to a run do.
class RunCheck {
 public:
  /// `path` is that of a run, as Run::open takes it. Throws Error NotFound when there are no record files.
  RunCheck(const std::string& path, const CheckOptions& check, const ReadOptions& options);

  std::vector<std::string> files() const;  ///< that are checked
  /// Checks the next file. Behind the last one reports what the run lacks and gives nothing.
  std::optional<CheckedFile> next(const FindingSink& report);

  /// Of the files so far: whether any has a record that can be read, and whether something was found that is
  /// more than a remark.
  bool anyRecord() const { return anyRecord_; }
  bool incomplete() const { return incomplete_; }

  /// All findings of a check, which is kept as long as the stream: `file`, `problem`, `keyword`,
  /// `occurrence`, `line` (of a text), `offset`, `expected`, `found`, `action`.
  static Stream findings(std::shared_ptr<RunCheck> check);

 private:
  CheckedFile checkKeywords(const RunMember& file, const FindingSink& report);
  void checkContent(const RunMember& file, const FindingSink& report);
  void checkPairs(const FindingSink& report) const;

  std::shared_ptr<StreamContext> context_;
  std::shared_ptr<const RunState> run_;
  CheckOptions how_;
  std::vector<const RunMember*> members_;
  std::size_t next_ = 0;
  std::optional<std::int64_t> vectors_[2];  // of the unformatted and the formatted specification
  bool anyRecord_ = false;
  bool incomplete_ = false;
};

/// The findings of a check of a run's files: a row for each.
Stream check(const std::string& path, const CheckOptions& check = {}, const ReadOptions& options = {});

}  // namespace lumbarn
