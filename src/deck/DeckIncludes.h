#pragma once

#include <span>
#include <string>
#include <string_view>

namespace lumbarn {

/// What the name of a file in a deck says about itself. "\" divides folders on every system.
struct DeckPath {
  bool qUnixPath = false;      ///< an absolute path that begins with "/"
  bool qForwardSlash = false;  ///< there is a "/" in it
  bool qAbsolute = false;      ///< begins with a divider or with a drive
};
DeckPath analysePath(std::string_view zName);

/// The path by which a file is opened: an absolute name alone, any other in the folder.
std::string pathToOpen(std::string_view zFolder, std::string_view zName);

/// How a file that is not read is listed: a name that is not absolute with ".." in front.
std::string listedName(const std::string& zName);

/// Whether a name fits one of the patterns: extension and base name each by theirs, and the folder, unless
/// the pattern has none, as it stands. "*" without extension stands for all names. Letter case and kind of
/// divider do not matter.
bool isExcluded(std::string_view zName, std::span<const std::string> zExcludes);

}  // namespace lumbarn
