#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lumbarn {

/// The characters that end a folder's name in a path of this system.
std::string_view folderSeparators();

/// The names of the files in a folder ("" is the current one) that `wanted` takes, in ascending order of
/// their bytes, read in one pass. Symbolic links count as what they point to, and one that points to nothing
/// counts as a file, so that opening it tells what is wrong. False with `why` set, and no names, when the
/// folder cannot be listed.
bool listFolder(const std::string& folder, const std::function<bool(std::string_view)>& wanted,
                std::vector<std::string>& names, std::string& why);

bool isFolder(const std::string& path);
/// True for anything that exists and is not a folder.
bool isFile(const std::string& path);

}  // namespace lumbarn
