#include "DeckIncludes.h"

#include <algorithm>

#include "../files/Extensions.h"
#include "../support/Pattern.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

std::string plain(std::string_view name) {
  std::string path(name);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

}  // namespace

DeckPath analysePath(std::string_view zName) {
  DeckPath path;
  path.qForwardSlash = zName.find('/') != zName.npos;
  path.qUnixPath = zName.starts_with('/');
  path.qAbsolute = path.qUnixPath || zName.starts_with('\\') || (zName.size() > 1 && zName[1] == ':');
  return path;
}

std::string pathToOpen(std::string_view zFolder, std::string_view zName) {
  if (analysePath(zName).qAbsolute || zFolder.empty()) return plain(zName);
  std::string path(zFolder);
  if (!path.ends_with('/') && !path.ends_with('\\')) path += '/';
  return path + plain(zName);
}

std::string listedName(const std::string& zName) {
  const DeckPath path = analysePath(zName);
  if (path.qAbsolute) return zName;
  return (path.qForwardSlash ? "../" : "..\\") + zName;
}

bool isExcluded(std::string_view zName, std::span<const std::string> zExcludes) {
  const FileName name(plain(zName));
  return std::any_of(zExcludes.begin(), zExcludes.end(), [&](const std::string& zExclude) {
    FileName entry(plain(zExclude));
    if (entry.base == "*" && entry.extension.empty()) entry.extension = "*";
    return matchesPattern(name.extension, entry.extension) && matchesPattern(name.base, entry.base) &&
           (entry.folder.empty() || equalNoCase(name.folder, entry.folder));
  });
}

}  // namespace lumbarn
