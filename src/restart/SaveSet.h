#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "../record/Form.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "qvEclipseSAVESequence.h"

namespace lumbarn {

/// The save files of one run.
struct LUMBARN_API SaveSet {
  // What to read and how. `CheckSAVEFile` sets all but the limits.
  std::string FileName;
  bool Unified = false;    ///< one file for all steps
  bool qSaveHead = false;  ///< the file opens with SAVEHEAD, so it holds one step
  std::int32_t iStart = -1;
  std::int32_t iEnd = -1;  ///< steps wanted, both ends included; -1 is open
  std::int32_t nMultList = 0;
  std::vector<std::string> zMultList;  ///< the files of a multiple set; after a load the files really used

  // What was read.
  std::vector<qvEclipseSAVESequence> xSEQ;  ///< the steps kept, in the order read; one empty one for none
  std::int32_t NumSequences = 0;            ///< how many
  std::vector<std::string> found;           ///< the list, when a load made it: not that of the next load

  void setFiles(std::vector<std::string> files) {
    nMultList = static_cast<std::int32_t>(files.size());
    zMultList = std::move(files);
  }
  void add(qvEclipseSAVESequence step);
};

/// The form of a save file, and whether it opens with SAVEHEAD. Nothing for a file whose first record is not
/// INITIAL, SAVEHEAD, STATIC or DYNAMIC.
struct SaveFileForm {
  Form form;
  bool saveHead = false;
};
LUMBARN_API std::optional<SaveFileForm> formOfSaveFile(const std::string& path);

/// Reads the steps of a set. False when a file cannot be opened or is damaged, which is reported, and when
/// the load is canceled; the steps before are in the set.
LUMBARN_API bool readSaveSet(SaveSet& set, const Form& form, Session& session);

}  // namespace lumbarn
