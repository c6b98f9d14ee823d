#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "../files/Extensions.h"
#include "../record/FormFlags.h"
#include "../shapes/EclipseInfo.h"
#include "../support/Session.h"
#include "ReaderOptions.h"

namespace lumbarn {

class LoadDialog;

/// What the parts of one reader share.
struct ReaderContext {
  Session* session;
  ReaderOptions* options;        ///< the reader itself
  LoadDialog* dialog = nullptr;  ///< not owned; null: the silent path
};

/// Thrown by an operation that fails and has reported why.
struct ReportedFailure : std::exception {
  const char* what() const noexcept override { return "reported"; }
};

/// Calls an operation whose last argument is qOK. Throws ReportedFailure when it fails.
template <class Operation>
void require(Operation operation) {
  bool qOK = false;
  operation(qOK);
  if (!qOK) throw ReportedFailure();
}

/// One family of files in a reader: loads what the options name and holds it until the next load or release.
///
/// A load throws `ReportedFailure`, `LoadCanceled` or what the family throws; what could be read until then
/// is held.
class ReaderPart {
 public:
  explicit ReaderPart(const ReaderContext& context) : context_(&context) {}
  virtual ~ReaderPart() = default;
  ReaderPart(const ReaderPart&) = delete;
  ReaderPart& operator=(const ReaderPart&) = delete;

  virtual bool held() const = 0;
  virtual void release() = 0;
  /// Whether what is held ends at damage or at an incomplete record.
  virtual bool damaged() const = 0;
  /// Patterns of the load that nothing matched.
  virtual std::vector<std::string> unmatched() const { return {}; }

 protected:
  Session& session() const { return *context_->session; }
  ReaderOptions& options() const { return *context_->options; }
  /// Null when the load is silent.
  LoadDialog* dialog() const { return options().Silent ? nullptr : context_->dialog; }
  ECLIPSEINFO& sharedSelection() const;

  [[noreturn]] void failWith(Diagnosis diagnosis) const;
  /// Gives the host its turn. Throws LoadCanceled.
  void yield() const;
  /// Restart and INIT files begin alike, so the check of either accepts the other; this does not. A name that
  /// fits the type is enough: a step file may contain static arrays.
  bool isOfOtherType(const std::string& path, FileKind kind) const;
  void setForm(const FormFlags& form) const;
  /// Names the case by the file unless the host did.
  void setOrigin() const;
  /// The text options and the lists of patterns choose together.
  std::vector<std::string> onlyPatterns() const;
  std::vector<std::string> exceptPatterns() const;
  /// Resets the shared selection and offers these arrays in it, all chosen.
  ECLIPSEINFO& offerArrays(const std::vector<std::string>& names) const;
  /// Index files are never written beside the data unless the host names their folder; a missing one is
  /// reported.
  bool hasIndexFolder(const std::string& path) const;
  std::string indexPath(const std::string& path, std::string_view extension) const;

 private:
  const ReaderContext* context_;
};

}  // namespace lumbarn
