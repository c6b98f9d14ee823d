#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "../record/ByteSource.h"
#include "../record/Form.h"
#include "../support/Diagnosis.h"
#include "Extensions.h"

namespace lumbarn {

/// What a file is, as far as can be told.
struct Recognised {
  FileKind kind = FileKind::Unknown;
  std::optional<Form> form;          ///< of a record file; nothing when no record header was found in it
  std::optional<bool> unified;       ///< of summary, restart and save data: one file for all steps; of
                                     ///< streamlines: False
  bool byContent = false;            ///< the content tells the kind; False: only the file's name does
  std::optional<Diagnosis> problem;  ///< what kept the file from being read this far
  std::string keyword;               ///< of the first record; empty when there is none
  std::uint64_t offset = 0;          ///< of its header, or of the line that shows what a text is

  std::int32_t whichtype() const { return whichtypeOf(kind); }
};

/// Tells the kind of a file from the keywords of its first records; the name is a second witness where these
/// leave several kinds open (an INIT file or a restart step that breaks off behind its headers, a summary of
/// a single step) and the only one for a file without records, such as a deck. A name that the records
/// contradict does not count. No file makes it fail: one that is short, damaged or not there gives what can
/// be told, which may be `Unknown`.
///
/// A text without records is a deck, or a part of one, when its first line that is no comment is a keyword
/// and a record ends with a slash further on, whatever its name: INCLUDE files are often named as grids. It
/// is one of measured well tests when the word RFT or PLT opens one of the commands in its first lines,
/// behind comments and before any other line.
///
/// At most some hundred record headers are read, and no data; of a text some thousand characters. A restart
/// file is unified when a step number record (`SEQNUM`) stands in front, behind foreign arrays at most.
/// Summary data are unified when a second report step is met; with one step only, the name decides, and
/// without a telling name they count as unified, as they read the same.
Recognised recogniseFile(const std::string& path);
/// The same for bytes from anywhere; `name` is the file's name or path, or empty.
Recognised recognise(std::shared_ptr<const ByteSource> source, const std::string& name);
/// Why a file is not of the type that was expected, as data: it cannot be opened, is empty, consists of no
/// records, or its first record belongs to another type.
Diagnosis refusal(const std::string& path, FileKind expected);
/// Whether the bytes in front can be those of a text of single bytes: there is no character 0 among them.
bool looksLikeText(const ByteSource& source);

}  // namespace lumbarn
