#include "ReaderParts.h"

namespace lumbarn {

void ReaderParts::beginLoad(ReaderPart& part) {
  last = &part;
  part.release();
  restoreOptions();
  before_ = foundOptions();
}

ReaderParts::FoundOptions ReaderParts::foundOptions() const {
  const ReaderOptions& options = *context.options;
  return {options.Unified, options.AllData, options.zOrigin, options.HPGFileName};
}

void ReaderParts::restoreOptions() {
  if (!before_) return;
  const auto restore = [](auto& option, const auto& before, const auto& after) {
    if (option == after) option = before;
  };
  ReaderOptions& options = *context.options;
  restore(options.Unified, before_->Unified, after_.Unified);
  restore(options.AllData, before_->AllData, after_.AllData);
  restore(options.zOrigin, before_->zOrigin, after_.zOrigin);
  restore(options.HPGFileName, before_->HPGFileName, after_.HPGFileName);
}

}  // namespace lumbarn
