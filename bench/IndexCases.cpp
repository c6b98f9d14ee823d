#include <algorithm>
#include <array>
#include <bit>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "Cases.h"
#include "index/IndexFile.h"
#include "index/RestartIndexAgreement.h"
#include "record/RecordWriter.h"

namespace lumbarn::bench {

namespace {

namespace fs = std::filesystem;

constexpr int steps = 250;
constexpr int arrays = 32;
constexpr int recordsPerStep = arrays + 9;  // with data
constexpr std::int32_t cellsOfLarge = 3120000;
constexpr std::int32_t cellsOfSmall = 1000;
constexpr Form form{Framing::FourByteMarks, std::endian::native == std::endian::little};

/// A unified restart whose arrays are holes in the file: only what a walk may look at is written, which are
/// headers and the marks at both ends of the data.
class SparseRestart {
 public:
  explicit SparseRestart(const fs::path& path) : file_(path, std::ios::binary) {}

  void step(int number, std::int32_t cells) {
    const std::array size{cells, 1, 1};
    out_.integers("SEQNUM", std::array{number});
    out_.integers("INTEHEAD", head(number, size));
    out_.logicals("LOGIHEAD", std::array{true, false});
    out_.doubles("DOUBHEAD", std::vector<double>(229, number));
    out_.integers("IGRP", std::vector<std::int32_t>(400));
    out_.integers("IWEL", std::vector<std::int32_t>(465));
    out_.singles("SWEL", std::vector<float>(366));
    out_.doubles("XWEL", std::vector<double>(390));
    out_.texts("ZWEL", std::vector<std::string>(9, "WELL"));
    out_.message("STARTSOL");
    for (int i = 0; i < arrays; ++i) array(fmt::format("ARRAY{:02}", i), cells);
    out_.message("ENDSOL");
  }
  void close() {
    file_.close();
    require(!file_.fail(), "the sparse file could not be written");
  }

 private:
  static std::vector<std::int32_t> head(int number, const std::array<std::int32_t, 3>& size) {
    std::vector<std::int32_t> words(411);
    words[2] = 1;
    words[8] = size[0];
    words[9] = size[1];
    words[10] = size[2];
    words[11] = size[0];
    words[64] = number % 28 + 1;
    words[65] = 1;
    words[66] = 2000 + number / 28;
    words[68] = number;
    words[94] = 100;
    return words;
  }

  void array(const std::string& name, std::int32_t cells) {
    constexpr std::int64_t block = 4000;
    out_.header(name, cells, "REAL");
    const std::int64_t bytes = std::int64_t{4} * cells;
    const std::int64_t last = (bytes - 1) % block + 1;
    mark(std::min(bytes, block));
    file_.seekp(bytes + 8 * ((bytes + block - 1) / block) - 8, std::ios::cur);
    mark(last);
  }
  void mark(std::int64_t length) {
    for (int shift = 24; shift >= 0; shift -= 8) file_.put(static_cast<char>(length >> shift));
  }

  std::ofstream file_;
  RecordWriter out_{[this](std::span<const std::byte> bytes) {
                      file_.write(reinterpret_cast<const char*>(bytes.data()),
                                  static_cast<std::streamsize>(bytes.size()));
                    },
                    form};
};

struct Files {
  fs::path large, small, index;
};

void writeRestart(const fs::path& path, std::int32_t cells) {
  if (fs::exists(path)) return;
  SparseRestart file(path);
  for (int step = 1; step <= steps; ++step) file.step(step, cells);
  file.close();
}

RestartIndex walk(const fs::path& path) {
  Session session;
  const std::string files[] = {path.string()};
  RestartIndex index = walkRestart(session, files);
  require(index.whole && index.steps.size() == steps, "not all steps were met");
  require(index.steps.back().groups[0].entries.size() == recordsPerStep, "not all records were met");
  return index;
}

/// The index without the ranges of its arrays, for which 100 GB would have to be read.
void writeIndex(const Files& files) {
  if (fs::exists(files.index)) return;
  RestartIndex index = walk(files.large);
  for (IndexStep& step : index.steps) {
    for (IndexEntry& entry : step.groups[0].entries) entry.minimum = entry.maximum = 0;
  }
  bool qOK = false;
  Session session;
  WriteEclipseRsspecFile(index, files.index.string(), qOK, session);
  require(qOK, "the index could not be written");
}

void listByIndex(const Files& files) {
  Session session;
  const std::string restart[] = {files.large.string()};
  const RestartIndex index = indexOfRestart(session, restart, files.index.string());
  require(index.fromFile && index.steps.size() == steps, "the index was not used");
  benchmark::DoNotOptimize(&index);
}

}  // namespace

Family indexFamily(const std::filesystem::path& folder) {
  const Files files{folder / "LARGE.UNRST", folder / "SMALL.UNRST", folder / "LARGE.RSSPEC"};
  const auto walkLarge = [files] { walk(files.large); };
  constexpr double memory = 8e6;
  return {"index",
          [files] {
            writeRestart(files.large, cellsOfLarge);
            writeRestart(files.small, cellsOfSmall);
            writeIndex(files);
          },
          {
              {"index/walk100GB", "small file", 3, 0, memory, walkLarge, [files] { walk(files.small); }},
              {"index/rsspec100GB", "walk", 0.10, 0, memory, [files] { listByIndex(files); }, walkLarge},
          }};
}

}  // namespace lumbarn::bench
