#include "Folder.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace lumbarn {
namespace {

namespace fs = std::filesystem;

// Names are UTF-8 on every system; where the system's own names are bytes, the bytes pass as they are.
fs::path toPath(std::string_view name) { return fs::path(std::u8string(name.begin(), name.end())); }
std::string toName(const fs::path& path) {
  const std::u8string name = path.u8string();
  return {name.begin(), name.end()};
}

}  // namespace

std::string_view folderSeparators() { return fs::path::preferred_separator == '/' ? "/" : "/\\:"; }

bool listFolder(const std::string& folder, const std::function<bool(std::string_view)>& wanted,
                std::vector<std::string>& names, std::string& why) {
  names.clear();
  std::error_code failure;
  fs::directory_iterator entry(toPath(folder.empty() ? "." : folder), failure);
  for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
    std::string name = toName(entry->path().filename());
    std::error_code unknown;  // an entry that cannot be asked is no folder
    if (wanted(name) && !entry->is_directory(unknown)) names.push_back(std::move(name));
  }
  if (failure) {
    names.clear();
    why = failure.message();
    return false;
  }
  std::ranges::sort(names);
  return true;
}

bool isFolder(const std::string& path) {
  std::error_code unknown;
  return fs::is_directory(toPath(path), unknown);
}

bool isFile(const std::string& path) {
  std::error_code unknown;
  const fs::file_status status = fs::status(toPath(path), unknown);
  return fs::exists(status) && !fs::is_directory(status);
}

}  // namespace lumbarn
