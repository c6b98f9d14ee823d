#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <span>
#include <string>
#include <string_view>

namespace lumbarn {

/// A fresh folder that is removed with all that is in it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() / ("lumbarn-files-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string operator/(std::string_view name) const { return (path_ / name).string(); }

  void add(std::string_view name, std::span<const std::byte> content = {}) const {
    std::ofstream file(path_ / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
  }
  void add(std::initializer_list<std::string_view> names) const {
    for (const std::string_view name : names) add(name);
  }

 private:
  std::filesystem::path path_;
};

}  // namespace lumbarn
