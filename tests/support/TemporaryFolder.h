#pragma once

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <unistd.h>

namespace lumbarn::test {

inline void writeFile(const std::string& path, std::span<const std::byte> bytes) {
  std::ofstream out(path, std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

/// A folder that is gone with all it holds when it goes out of scope. It lies in memory where the system has
/// such a place and TMPDIR says nothing else: the damage tests write thousands of files.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    const bool inMemory = !std::getenv("TMPDIR") && ::access("/dev/shm", W_OK) == 0;
    const auto parent = inMemory ? std::filesystem::path("/dev/shm") : std::filesystem::temp_directory_path();
    std::random_device random;
    do {
      path_ = parent / ("lumbarn-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string file(std::string_view name) const { return (path_ / name).string(); }
  /// The file of a report step: ROOT.X0012.
  std::string stepFile(const std::string& root, const char* letter, int step) const {
    return file(root + '.' + letter + std::to_string(10000 + step).substr(1));
  }
  void add(std::initializer_list<std::string> names) const {
    for (const std::string& name : names) writeFile(file(name), {});
  }

 private:
  std::filesystem::path path_;
};

}  // namespace lumbarn::test
