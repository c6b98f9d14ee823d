#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qvEclipseReader.h"

namespace lumbarn {

class ReaderPart;

/// What the reader does with files of one code (`whichtype`).
struct FileCode {
  std::int32_t code;
  std::string_view name;                           ///< of the data, for messages; empty: none are read
  ReaderPart& (*part)(ReaderParts&) = nullptr;     ///< holds the data; null: nothing does
  bool answersHeld = false;                        ///< IsInitialised and DeleteObject know it
  void (qvEclipseReader::*load)(bool&) = nullptr;  ///< null: refused with a diagnosis
  bool (*check)(const std::string& path, Session&) = nullptr;  ///< null: the content decides
};

/// Null for a code that no file has.
const FileCode* findFileCode(std::int32_t code);
/// The codes that can be loaded: "11 to 16, 18, 23, 25, 76 or 77".
std::string loadableCodes();
/// The name of what a part holds.
std::string_view nameOf(ReaderParts& parts, const ReaderPart& part);

}  // namespace lumbarn
