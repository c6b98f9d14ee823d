#include <algorithm>
#include <array>
#include <bit>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "Baseline.h"
#include "Cases.h"
#include "frame/Write.h"
#include "record/RecordWriter.h"
#include "run/Run.h"
#include "welltests/WellTest.h"
#include "welltests/qvEclipseRFT.h"

namespace lumbarn::bench {

namespace {

/// A file of tests that are all alike but in their well and their values.
struct TestFile {
  std::filesystem::path path;
  std::int32_t tests = 0;
  std::size_t connections = 0;
  std::size_t segments = 0;  ///< 0: no PLT either
  bool plt = false;
};

using Texts = std::vector<std::string>;

Texts welletc(std::int32_t test) {
  return {"  DAYS",   fmt::format("OP-{}", test % 300),
          "",         " METRES",
          " BARSA",   "R",
          "MULTISEG", "SM3/DAY",
          "SM3/DAY",  "RM3/DAY ",
          " M/SEC  ", "",
          "   CP",    " KG/SM3 ",
          "KG/DAY ",  "KG/KG"};
}

std::vector<float> rising(std::size_t rows, float first, float step) {
  std::vector<float> values(rows);
  for (std::size_t i = 0; i < rows; ++i) values[i] = first + step * static_cast<float>(i);
  return values;
}

std::vector<std::int32_t> whole(std::size_t rows, std::int32_t most) {
  std::vector<std::int32_t> values(rows);
  for (std::size_t i = 0; i < rows; ++i) values[i] = static_cast<std::int32_t>(i) % most + 1;
  return values;
}

void writeTest(RecordWriter& out, const TestFile& file, std::int32_t test) {
  const auto shift = static_cast<float>(test % 1000);
  const std::size_t n = file.connections;
  out.singles("TIME", std::array{static_cast<float>(test / 300)});
  out.integers("DATE", std::array{1 + test % 28, 1 + test / 28 % 12, 2015 + test / 30000});
  out.texts("WELLETC", welletc(test));
  for (const char* name : {"CONIPOS", "CONJPOS", "CONKPOS"}) out.integers(name, whole(n, 50));
  out.texts("HOSTGRID", Texts(n));
  float first = 2000 + shift;
  for (const char* name : {"DEPTH", "PRESSURE", "SWAT", "SGAS"}) {
    out.singles(name, rising(n, first, first / 1000));
    first = first > 1 ? first / 50 : first / 2;
  }
  if (file.plt) {
    for (const char* name : {"CONDEPTH", "CONPRES", "CONORAT", "CONWRAT", "CONGRAT", "CONOTUB", "CONWTUB",
                             "CONGTUB", "CONVTUB", "CONFAC", "CONKH"}) {
      out.singles(name, rising(n, first + shift, 0.5F));
    }
    out.singles("CONLENST", rising(n, 4000, -8));
    out.singles("CONLENEN", rising(n, 4006, -8));
    out.integers("CONBRNO", whole(n, 3));
  }
  if (file.segments == 0) return;
  const std::size_t s = file.segments;
  out.integers("CONSEGNO", whole(n, static_cast<std::int32_t>(s)));
  for (const char* name : {"SEGDEPTH", "SEGPRES", "SEGORAT", "SEGWRAT", "SEGGRAT", "SEGOVEL", "SEGWVEL",
                           "SEGGVEL", "SEGOHF", "SEGWHF", "SEGGHF", "SEGXCORD", "SEGYCORD"}) {
    out.singles(name, rising(s, shift, 0.25F));
  }
  out.singles("SEGLENST", rising(s, 0, 10));
  out.singles("SEGLENEN", rising(s, 10, 10));
  std::vector<std::int32_t> next = whole(s, static_cast<std::int32_t>(s));
  for (auto& segment : next) --segment;
  out.integers("SEGNXT", next);
  out.integers("SEGBRNO", std::vector<std::int32_t>(s, 1));
  out.integers("BRNST", std::array{1});
  out.integers("BRNEN", std::array{static_cast<std::int32_t>(s)});
}

void writeTests(const TestFile& file) {
  if (std::filesystem::exists(file.path)) return;
  const auto part = file.path.string() + ".part";
  {
    std::ofstream out(part, std::ios::binary);
    RecordWriter writer(
        [&](std::span<const std::byte> bytes) {
          out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        },
        {Framing::FourByteMarks, std::endian::native == std::endian::little});
    for (std::int32_t test = 0; test < file.tests; ++test) writeTest(writer, file, test);
    require(out.flush().good(), "cannot write " + part);
  }
  std::filesystem::rename(part, file.path);
}

/// Hands what the tests took back to the system, at the cost of the case: the allocator would give it to the
/// baseline's buffer, and B is with new memory.
void giveMemoryBack() {
#if defined(__GLIBC__)
  malloc_trim(0);
#endif
}

/// All tests as a host loads them.
void load(const TestFile& file) {
  {
    Session session;
    qvEclipseRFT rft(session);
    bool qOK = rft.CheckRFTFile(file.path.string());
    if (qOK) rft.getRFTData(qOK);
    require(qOK && session.diagnoses().empty(), "no clean load");
    require(rft.NumTests() == file.tests, fmt::format("{} tests", rft.NumTests()));
    require(rft.test(file.tests).qPLT() == file.plt, "last test is another");
    benchmark::DoNotOptimize(rft.test(file.tests).rftTable().values.data());
  }
  giveMemoryBack();
}

/// All tests as data, one after the other.
void readRecords(const TestFile& file) {
  Session session;
  const auto reader = WellTestReader::open(file.path.string(), session);
  std::int32_t tests = 0;
  for (WellTest test; reader->next(test);) tests += test.connections.rows == file.connections ? 1 : 0;
  require(tests == file.tests, fmt::format("{} tests", tests));
}

/// The list of all tests as the command writes it.
void list(const TestFile& file) {
  struct Lines final : Sink {
    void write(std::span<const std::byte> bytes) override {
      count += std::ranges::count(bytes, std::byte{'\n'});
    }
    std::ptrdiff_t count = 0;
  } lines;
  write(Run::open(file.path.string()).tests(), lines);
  require(lines.count == file.tests + 1, fmt::format("{} lines", lines.count));
}

}  // namespace

Family wellTestFamily(const std::filesystem::path& folder) {
  const TestFile small{folder / "small.RFT", 100000, 10};
  const TestFile half{folder / "half.RFT", 50000, 10};
  const TestFile plt{folder / "plt.RFT", 20000, 25, 0, true};
  const TestFile segments{folder / "segments.RFT", 4000, 60, 120, true};
  const auto swapped = [](const TestFile& file) { return [file] { readSwapped(file.path); }; };
  const auto loaded = [](const TestFile& file) { return [file] { load(file); }; };
  return {"welltests",
          [=] {
            for (const TestFile& file : {small, half, plt, segments}) writeTests(file);
          },
          {
              {"welltests/rft", "B", 3, 0, 0, loaded(small), swapped(small)},
              {"welltests/twice", "half", 2.4, 1.6, 0, loaded(small), loaded(half)},
              {"welltests/list", "B", 3.5, 0, 20e6, [small] { list(small); }, swapped(small)},
              {"welltests/plt", "B", 3, 0, 0, loaded(plt), swapped(plt)},
              {"welltests/segments", "B", 3, 0, 0, loaded(segments), swapped(segments)},
              {"welltests/records", "B", 0, 0, 20e6, [plt] { readRecords(plt); }, swapped(plt)},
          }};
}

}  // namespace lumbarn::bench
