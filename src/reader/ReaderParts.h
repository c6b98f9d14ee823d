#pragma once

#include <optional>
#include <string>

#include "DeckPart.h"
#include "GridPart.h"
#include "InitPart.h"
#include "RestartPart.h"
#include "SummaryPart.h"
#include "WellTestPart.h"

namespace lumbarn {

/// Everything behind a `qvEclipseReader`: one part for each family of files, and what its loads share.
struct ReaderParts {
  ReaderParts(Session& session, ReaderOptions& options) : context{&session, &options} {}

  /// Releases what is held of a part and sets the options that an earlier load found back, so that nothing of
  /// one file is returned as that of another, also when the load fails.
  void beginLoad(ReaderPart& part);
  void endLoad() { after_ = foundOptions(); }
  /// The next load sets nothing back.
  void forgetLoad() { before_.reset(); }

  ReaderContext context;
  SummaryPart summary{context};
  RestartIndexPart restartIndex{context};
  RestartPart restart{context, restartIndex};
  GridPart grid{context};
  InitPart init{context};
  DeckPart deck{context};
  WellTestPart tests{context};
  UserTestPart userTests{context};
  ReaderPart* last = nullptr;  ///< that of the last load

 private:
  /// Options that a load sets where the host did not.
  struct FoundOptions {
    bool Unified = false, AllData = true;
    std::string zOrigin, HPGFileName;
  };
  FoundOptions foundOptions() const;
  void restoreOptions();

  std::optional<FoundOptions> before_;  // the last load, as the host set them
  FoundOptions after_;                  // as the load left them
};

}  // namespace lumbarn
