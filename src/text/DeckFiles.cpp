#include "DeckFiles.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "../files/Extensions.h"
#include "../files/Folder.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

bool isAbsolute(std::string_view path) {
  return path.starts_with('/') || (path.size() > 2 && path[1] == ':' && path[2] == '/');
}

/// "a/./b/x/../c" as "a/b/c", so that one file has one path.
std::string plainPath(const std::string& path) {
  return std::filesystem::path(path).lexically_normal().generic_string();
}

/// The path whose last part differs in letter case only and exists; empty if there is none.
std::string inOtherCase(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::string folder = slash == path.npos ? std::string() : path.substr(0, slash + 1);
  const std::string_view name = std::string_view(path).substr(folder.size());
  std::vector<std::string> names;
  std::string why;
  listFolder(
      folder, [&](std::string_view other) { return equalNoCase(other, name); }, names, why);
  return names.empty() ? std::string() : folder + names.front();
}

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == path.npos ? std::string() : path.substr(0, slash + 1);
}

}  // namespace

std::uint32_t DeckFiles::add(DeckFile file) {
  files_.push_back(std::move(file));
  return static_cast<std::uint32_t>(files_.size() - 1);
}

std::shared_ptr<const ByteSource> DeckFiles::open(std::uint32_t file) const {
  if (file == 0 && kept_) return kept_;
  std::string why;
  std::shared_ptr<const ByteSource> source = FileSource::open(files_[file].path, why);
  if (!source)
    throw BadRecord(
        Diagnosis{.message = Message::FileOpen, .path = files_[file].path, .found = std::move(why)});
  return source;
}

void DeckFiles::setAlias(std::string_view alias, std::string_view path) {
  aliases_[std::string(alias)] = std::string(path);
}

FoundFile DeckFiles::find(std::string_view name, std::uint32_t includer) const {
  FoundFile found;
  std::string path(name);
  std::replace(path.begin(), path.end(), '\\', '/');
  if (path.starts_with('$')) {
    const std::size_t slash = std::min(path.find('/'), path.size());
    const auto alias = aliases_.find(path.substr(1, slash - 1));
    found.unknownAlias = alias == aliases_.end();
    const std::string folder = found.unknownAlias ? path.substr(1, slash - 1) : alias->second;
    path.replace(0, slash, folder);
    std::replace(path.begin(), path.end(), '\\', '/');
  }
  const auto exists = [&](const std::string& base) {
    found.path = plainPath(base + path);
    if (isFile(found.path)) return true;
    const std::string other = inOtherCase(found.path);
    if (other.empty()) return false;
    found.path = other;
    return found.otherCase = true;
  };
  const std::string top = isAbsolute(path) ? std::string() : folderOf(files_.front().path);
  found.exists = exists(top);
  if (found.exists || isAbsolute(path)) return found;
  const std::string first = found.path;
  const std::string own = folderOf(files_[includer].path);
  found.exists = found.otherFolder = own != top && exists(own);
  if (!found.exists) found.path = first;
  return found;
}

bool DeckFiles::isOpen(const std::string& path, std::uint32_t includer) const {
  for (std::uint32_t file = includer; file != 0; file = static_cast<std::uint32_t>(files_[file].parent)) {
    if (files_[file].path == path) return true;
  }
  return plainPath(files_.front().path) == path;
}

}  // namespace lumbarn
