#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "record/RecordWriter.h"

namespace lumbarn::test {

/// What the INTEHEAD of a small INIT file says.
struct InitHead {
  std::int32_t Nx = 2, Ny = 2, Nz = 1;
  std::int32_t nActive = 4;
  std::int32_t word4 = 0;
  std::int32_t iUnits = 1;
  std::int32_t nPhases = 7;
  std::int32_t iProgram = 100;
  std::size_t words = 95;
};

/// Writes INIT files record by record.
class InitBuilder {
 public:
  explicit InitBuilder(Form form) : writer_(memorySink(bytes_), form) {}

  InitBuilder& head(const InitHead& head) {
    std::vector<std::int32_t> words(head.words);
    const auto set = [&](std::size_t word, std::int32_t value) {
      if (word <= words.size()) words[word - 1] = value;
    };
    set(3, head.iUnits), set(4, head.word4), set(9, head.Nx), set(10, head.Ny), set(11, head.Nz);
    set(12, head.nActive), set(15, head.nPhases), set(65, 7), set(66, 2), set(67, 1999);
    set(95, head.iProgram);
    return integers("INTEHEAD", words);
  }
  /// LOGIHEAD of 35 words, those with the given numbers true.
  InitBuilder& flags(const std::vector<int>& set, int count = 35, bool value = true) {
    const auto words = std::make_unique<bool[]>(static_cast<std::size_t>(count));
    for (const int word : set) words[static_cast<std::size_t>(word) - 1] = value;
    writer_.logicals("LOGIHEAD", {words.get(), static_cast<std::size_t>(count)});
    return *this;
  }
  InitBuilder& integers(std::string_view name, const std::vector<std::int32_t>& values) {
    writer_.integers(name, values);
    return *this;
  }
  InitBuilder& singles(std::string_view name, const std::vector<float>& values) {
    writer_.singles(name, values);
    return *this;
  }
  InitBuilder& doubles(std::string_view name, const std::vector<double>& values) {
    writer_.doubles(name, values);
    return *this;
  }
  InitBuilder& local(const std::string& name) {
    const std::string names[] = {name};
    writer_.texts("LGR", names);
    return *this;
  }
  InitBuilder& message(std::string_view name) {
    writer_.message(name);
    return *this;
  }
  InitBuilder& header(std::string_view name, std::int32_t count, std::string_view type) {
    writer_.header(name, count, type);
    return *this;
  }
  RecordWriter& out() { return writer_; }
  const std::vector<std::byte>& bytes() const { return bytes_; }

 private:
  std::vector<std::byte> bytes_;
  RecordWriter writer_;
};

/// A global grid of 6 cells, of which the second and the fifth are not active, a local grid "BOX" of 4 and a
/// radial one "RING" of 2, in the passes that simulators write.
inline std::vector<std::byte> twoLocalGrids(Form form) {
  InitBuilder file(form);
  const InitHead global{.Nx = 3, .Ny = 2, .nActive = 4};
  file.head(global).flags({1, 15}).doubles("DOUBHEAD", {0});
  file.singles("PORV", {10, 0, 30, 40, 0, 60})
      .singles("DEPTH", {1, 2, 3, 4, 5, 6})
      .singles("PORO", {5, 6, 7, 8});
  file.local("BOX").head({}).flags({5});
  file.singles("PORV", {1, 2, 3, 4}).singles("PORO", {11, 12, 13, 14}).integers("ENDLGR", {1});
  file.local("RING").head({.Nx = 2, .Ny = 1, .nActive = 2, .iProgram = 300}).flags({4});
  file.singles("PORV", {5, 6}).singles("DR", {21, 22}).singles("DTHETA", {23, 24}).singles("PERMR", {25, 26});
  file.message("ENDLGR").message("LGRSGONE");
  std::vector<std::int32_t> dims(48);
  dims[0] = 3, dims[18] = 1, dims[19] = 1;
  file.integers("TABDIMS", dims).doubles("TAB", {800, 1000, 1}).doubles("CON", {1});
  file.integers("PVTNUM", {1, 1, 2, 2}).integers("SATNUM", {1, 2, 3, 4, 5, 6});
  file.local("BOX").integers("PVTNUM", {3, 3, 4, 4});
  file.local("RING").integers("PVTNUM", {5, 6}).integers("LGRSGONE", {});
  file.singles("TRANNNC", {0.5F, 0.25F, 0.125F});
  file.local("BOX").singles("TRANNNC", {}).singles("TRANGL", {31, 32});
  file.local("RING").singles("TRANNNC", {33}).singles("TRANLL", {34, 35}).integers("ENDLGR", {});
  file.message("LGRSGONE").integers("FIPNUM", {9, 8, 7, 6});
  return file.bytes();
}

}  // namespace lumbarn::test
