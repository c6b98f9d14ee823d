#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "index/IndexFile.h"
#include "record/RecordWriter.h"
#include "restart/qvEclipseSEQUENCE.h"
#include "support/IndexedRun.h"
#include "support/InitBuilder.h"
#include "support/ModelRun.h"

/// make_seeds FOLDER: writes first inputs for every fuzz target, to FOLDER/TARGET.

namespace {

using namespace lumbarn;
using lumbarn::test::everyForm;
using Bytes = std::vector<std::byte>;

class Corpus {
 public:
  explicit Corpus(std::filesystem::path folder) : folder_(std::move(folder)) {}

  /// An input of a target: bytes of its own, then the file.
  void add(const std::string& target, std::initializer_list<int> front, const Bytes& file) const {
    std::filesystem::create_directories(folder_ / target);
    std::string text;
    for (const int byte : front) text += static_cast<char>(byte);
    text.append(reinterpret_cast<const char*>(file.data()), file.size());
    // Named by content, so that a new run adds nothing twice.
    const auto name = fmt::format("seed_{:016x}", std::hash<std::string>()(text));
    std::ofstream(folder_ / target / name, std::ios::binary) << text;
  }

  /// A record file, for all targets that take one.
  void addFile(const Bytes& file, const Form& form, int name) const {
    if (form.formatted()) {
      add("fuzz_records_formatted", {}, file);
    } else {
      const int marks = form.framing == Framing::OneByteMarks ? 1 : 0;
      add("fuzz_records_unformatted", {marks + (form.byteSwap ? 2 : 0)}, file);
    }
    add("fuzz_recogniser", {name}, file);
  }

  void addSummary(const Bytes& specification, const Bytes& data) const {
    Bytes both = specification;
    both.insert(both.end(), data.begin(), data.end());
    const auto length = static_cast<int>(specification.size());
    for (const int options : {2, 3}) add("fuzz_summary", {options, length % 256, length / 256}, both);
  }

  void addInit(const Bytes& file) const {
    for (const int options : {2, 3, 7}) add("fuzz_init", {options}, file);
  }

 private:
  std::filesystem::path folder_;
};

/// One record of every type, short ones and those of more than one block.
std::vector<Bytes> recordFiles(const Form& form) {
  std::vector<Bytes> files(3);
  RecordWriter small(memorySink(files[0]), form);
  small.integers("INTEHEAD", std::array{1, -100, 2147483647});
  small.singles("PARAMS", std::array{0.0F, 1.5F, -2.5e-10F, 3.4e38F});
  small.doubles("DOUBHEAD", std::array{0.1, -1e300, 5e-324});
  small.logicals("LOGIHEAD", std::array{true, false, true});
  small.texts("UNITS", std::vector<std::string>{"SM3/DAY", "", "'/ x"});
  small.texts("NAMES", std::vector<std::string>{"A WELL WITH A LONG NAME", "B"}, 32);
  small.message("STARTSOL");
  small.integers("EMPTY", {});
  small.header("ODD", 0, "NEWT");

  std::vector<std::int32_t> integers(1007);
  std::iota(integers.begin(), integers.end(), -500);
  RecordWriter large(memorySink(files[1]), form);
  large.singles("SWAT", std::vector<float>(1003, 0.25F));
  large.integers("ACTNUM", integers);
  large.texts("WGNAMES", std::vector<std::string>(107, "PRODUCER"));

  RecordWriter wild(memorySink(files[2]), form);
  wild.header("PORO", -1, "X231");
  wild.header("PORO", 5, "REAL");
  wild.header("WILD", std::numeric_limits<std::int32_t>::max(), "DOUB");
  return files;
}

/// Two steps of a save file, between the records that tell the simulator, or one behind its short header.
Bytes saved(const Form& form, bool compositional) {
  Bytes bytes;
  RecordWriter out(memorySink(bytes), form);
  std::vector<std::int32_t> head(140);
  std::iota(head.begin(), head.end(), 1);
  out.integers(compositional ? "INITIAL" : "SAVEHEAD", std::array{100, 2020});
  for (const std::int32_t step : {1, 2}) {
    head[38] = step;
    if (compositional) out.integers("DYNAMIC", std::array{7, 8});
    out.integers("SEQNUM", std::array{step});
    out.integers("INTEHEAD", head);
    out.doubles("DOUBHEAD", std::array{10.25 * step, 0.0});
    out.singles("PRESSURE", std::vector<float>(20, 1.5F));
  }
  return bytes;
}

/// The markers of a restart's first step, packed.
Bytes markers(std::int32_t iMethod) {
  Session session;
  const test::Model model(test::everyWriter.front());
  RecordCursor records(std::make_shared<MemorySource>(model.restart().bytes(test::bigEndian)),
                       test::bigEndian, "seed");
  qvEclipseSEQUENCE step(session);
  step.Unified = true;
  step.setMarkerMethod(iMethod);
  bool qOK = false;
  step.getEclipseSEQUENCE(records, qOK);
  step.iGrid = 1;
  Bytes block;
  std::int32_t nMarkers = 0;
  step.getMarkerDatab(block, nMarkers, qOK);
  if (nMarkers == 0) std::fputs("make_seeds: no markers\n", stderr);
  return block;
}

/// What no run of the table of writers has: two reservoirs, coarsening, angles.
std::vector<test::GridBuilder> grids() {
  std::vector<test::GridBuilder> all(2);
  all[0].grids[0].reservoirs = {{1, 1}, {2, 2}};
  all[0].grids[0].coarse = {1, 1, 0, 0, 0, 0, 1, 1, 0, 2, 2, 2};
  all[0].grids[0].nnc1 = {1, 2};
  all[0].grids[0].nnc2 = {7, 12};
  all[1].grids[0].size = {2, 4, 1};
  all[1].grids[0].angles = 4;
  all[1].grids[0].activity = {1, 0, 0, 1};
  return all;
}

/// The files of one writer's run.
void addRun(const Corpus& corpus, const test::Writer& writer, const Form& form) {
  const test::Model model(writer);
  const auto lines = [&](Bytes bytes) { return test::withLinesOf(writer, form, std::move(bytes)); };
  const auto summary = model.summary();
  corpus.addSummary(lines(summary.spec(form)), lines(summary.data(form)));
  const auto restart = model.restart();
  for (const int options : {0, 3}) corpus.add("fuzz_restart", {options}, lines(restart.bytes(form)));
  corpus.add("fuzz_restart", {6}, lines(restart.bytes(form, restart.steps[0])));
  corpus.addInit(lines(model.init(form)));
  corpus.add("fuzz_grid", {0}, lines(model.grid().egrid(form)));
  if (!writer.dualPorosity) corpus.add("fuzz_grid", {0}, lines(model.grid().grid(form)));
  corpus.add("fuzz_welltests", {}, lines(model.wellTests().bytes(form)));
}

Bytes example(const std::string& name) {
  std::ifstream in(std::string(LUMBARN_EXAMPLES "/") + name, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  if (text.empty()) fmt::print(stderr, "make_seeds: no {}\n", name);
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}

void addExamples(const Corpus& corpus) {
  const Form bigEndian{Framing::FourByteMarks, true};
  const Form formatted{Framing::Formatted, false};
  int name = 0;
  for (const char* file : {"ARBOR/ARBOR.SMSPEC", "ARBOR/ARBOR.UNSMRY", "ARBORM/ARBORM.S0004",
                           "ARBOR/ARBOR.EGRID", "HOLLIN/HOLLIN.RFT", "CEDAR/CEDAR_R2.SMSPEC"}) {
    corpus.addFile(example(file), bigEndian, name++);
  }
  for (const char* file : {"ARBORF/ARBORF.FSMSPEC", "ARBORFM/ARBORFM.A0004", "ARBORF/ARBORF.FRFT"}) {
    corpus.addFile(example(file), formatted, name++);
  }
  corpus.add("fuzz_restart", {6}, example("ARBORM/ARBORM.X0003"));
  for (const char* file : {"HOLLIN/HOLLIN.EGRID", "ARBOR/ARBOR.EGRID", "ARBORF/ARBORF.FEGRID"}) {
    corpus.add("fuzz_grid", {0}, example(file));
  }
  // The questions of fuzz_run with the files that each reads: of the summary, of restart and INIT, ...
  constexpr const char* runFiles[] = {"SMSPEC", "UNSMRY", "UNRST", "INIT", "EGRID", "RFT"};
  constexpr int summaryFirst = 0, cellsFirst = 4, testsFirst = 12, gridsFirst = 15, initFirst = 17,
                behind = 21;
  const auto ask = [&](int first, int last, std::initializer_list<int> files) {
    for (int question = first; question < last; ++question) {
      for (const int file : files)
        corpus.add("fuzz_run", {question, file}, example(std::string("ARBOR/ARBOR.") + runFiles[file]));
    }
  };
  ask(summaryFirst, cellsFirst, {0, 1});
  ask(cellsFirst, testsFirst, {2, 3, 4});
  ask(testsFirst, gridsFirst, {5});
  ask(gridsFirst, initFirst, {3, 4});
  ask(initFirst, behind, {3});
  for (const char* file : {"ARBOR/ARBOR.INIT", "HOLLIN/HOLLIN.INIT", "ARBORF/ARBORF.FINIT"})
    corpus.addInit(example(file));
  corpus.addSummary(example("ARBOR/ARBOR.SMSPEC"), example("ARBOR/ARBOR.UNSMRY"));
  corpus.addSummary(example("ARBORF/ARBORF.FSMSPEC"), example("ARBORFM/ARBORFM.A0004"));
  corpus.addSummary(example("CEDAR/CEDAR_R2.SMSPEC"), example("CEDAR/CEDAR_R2.UNSMRY"));
  corpus.addSummary(example("HOLLIN/HOLLIN.SMSPEC"), example("HOLLIN/HOLLIN.UNSMRY"));
}

/// A well with segments, devices and branches.
Bytes wellTests(const Form& form) {
  using Singles = test::WellTestBuilder::Singles;
  using Integers = test::WellTestBuilder::Integers;
  test::WellTestBuilder file;
  file.tests = {{.arrays = {{"CONLENST", Singles{20, 0, 10}},
                            {"CONLENEN", Singles{30, 10, 20}},
                            {"CONORAT", Singles{1, 2, 3}},
                            {"CONWRAT", Singles{1, 0, 3}},
                            {"CONGRAT", Singles{10, 20, 30}},
                            {"CONOTUB", Singles{1, 2, 3}},
                            {"CONWTUB", Singles{1, 2, 3}},
                            {"CONGTUB", Singles{1, 2, 3}},
                            {"CONSEGNO", Integers{1, 2, 3}},
                            {"CONBRNO", Integers{1, 2, 2}},
                            {"SEGBRNO", Integers{1, 1, 2, 2}},
                            {"SEGNXT", Integers{0, 1, 2, 2}},
                            {"SEGLENST", Singles{0, 10, 20, 30}},
                            {"SEGLENEN", Singles{10, 20, 20.1F, 30.1F}},
                            {"SEGORAT", Singles{1, 2, 3, 4}},
                            {"BRNST", Integers{1, 3}},
                            {"BRNEN", Integers{2, 4}}},
                 .time = 10.25F}};
  return file.bytes(form);
}

Bytes text(std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}

void addWellTests(const Corpus& corpus) {
  for (const auto& [name, form] : everyForm) corpus.add("fuzz_welltests", {}, wellTests(form));
  for (const char* file : {"HOLLIN/HOLLIN.RFT", "ARBORF/ARBORF.FRFT"})
    corpus.add("fuzz_welltests", {}, example(file));
  for (const int kind : {0, 1}) {
    corpus.add("fuzz_usertests", {kind}, example("measured/rft.txt"));
    for (const char* words :
         {"PLT\r\nWELLNAME P\r\nLENGTH Q\r\n1 2\r\n3\r\n", "RFT\nDATEFORMAT YY\nDATE 1990-2-3\nTIME 1.5\nD\n",
          "RFT\nGRIDNAME L\nDATE 1ST JAN, 90 FORMAT MM\nMD\n1E5 2\n",
          "\xEF\xBB\xBF"
          "1 2\rTVD X\r-.5 N/A"}) {
      corpus.add("fuzz_usertests", {kind}, text(words));
    }
  }
}

void addDecks(const Corpus& corpus) {
  for (const char* file : {"HOLLIN/HOLLIN.DATA", "MAPLE/MAPLE.DATA"}) {
    corpus.add("fuzz_deck", {1}, example(file));
    for (const int options : {3, 30}) corpus.add("fuzz_hostdeck", {options}, example(file));
  }
  corpus.add(
      "fuzz_hostdeck", {27},
      text("RUNSPEC\nDIMENS\n 1 1 2 /\nNUMRES\n 2 /\nGRID\nCOORDSYS\n 1 1 /\n 2 2 /\n/\nBOX\n 1 1 1 1 /\n"
           "COORD\n 24*1 /\nZCORN\n 8*2 8*3 /\nACTNUM\n 1 0 /\nCARFIN\n L 1 1 1 1 1 1 2 2 2 /\nEDIT\nPORV\n"
           " 1 /\nSUMMARY\nWOPR\n P /\nSCHEDULE\nINCLUDE\n 'X' /\nTSTEP\n 1 /\nEND\n"));
  for (const char* lines :
       {"1 -- a/b\n2* 'A B' 3*0.5,4 /\n", "'A/B' 'C--D' 2*'E' -*1 .*2 / it's\n", "$A\\b/c.inc/\n'$A' /\n",
        "OIL\nGRID\nFIPABC\nDATES -- x\n1 'JAN' 2000 /\n/\n", "1\t2 3* 5*1e3 X\n4 /\n9*1\n"}) {
    corpus.add("fuzz_deck", {1}, text(lines));
  }
}

/// The indexes of the run whose data the target has.
void addIndexes(const Corpus& corpus) {
  const test::TemporaryFolder folder;
  const test::IndexedRun run;
  const std::string target = folder.file("INDEX");
  const auto addWritten = [&](int kind) {
    std::ifstream in(target, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(in), {});
    corpus.add("fuzz_index", {kind}, test::bytesOf(text));
  };
  Session session;
  bool qOK = false;
  WriteEclipseRsspecFile(walkRestart(session, run.writeRestart(folder, "R", test::bigEndian, true)), target,
                         qOK, session);
  addWritten(0);
  test::writeFile(folder.file("R.INIT"), run.init(test::bigEndian));
  WriteEclipseInspecFile(walkInit(session, folder.file("R.INIT")), target, qOK, session);
  addWritten(1);
}

/// A run with every simulation table, small, two of those with an outer index.
Bytes allTables(const Form& form) {
  test::InitBuilder file(form);
  std::vector<std::int32_t> dims(48, 1);
  for (const std::size_t rows : {4U, 8U, 9U, 15U, 16U, 21U, 24U, 28U, 33U, 36U}) dims[rows] = 2;
  std::vector<double> tab(60);
  std::iota(tab.begin(), tab.end(), 1);
  tab[7] = tab[13] = 2e20;
  file.head({}).flags({1, 2, 8}).singles("PORV", {1, 2, 3, 4});
  file.integers("TABDIMS", dims).doubles("TAB", tab);
  return file.bytes();
}

}  // namespace

int main(int count, char** words) {
  if (count != 2) {
    std::fputs("usage: make_seeds FOLDER\n", stderr);
    return 2;
  }
  const Corpus corpus(words[1]);
  for (const auto& [name, form] : everyForm) {
    for (const auto& file : recordFiles(form)) corpus.addFile(file, form, 9);
    corpus.addInit(test::twoLocalGrids(form));
    corpus.addInit(allTables(form));
    for (const auto& writer : test::everyWriter) addRun(corpus, writer, form);
    for (const bool compositional : {true, false}) {
      for (const int options : {8, 12}) corpus.add("fuzz_restart", {options}, saved(form, compositional));
    }
    for (const auto& grid : grids()) {
      corpus.add("fuzz_grid", {0}, grid.egrid(form));
      if (grid.grids[0].angles == 0) corpus.add("fuzz_grid", {0}, grid.grid(form));
    }
  }
  for (const std::int32_t iMethod : {1, 2}) corpus.add("fuzz_restart", {16}, markers(iMethod));
  addExamples(corpus);
  addWellTests(corpus);
  addDecks(corpus);
  addIndexes(corpus);
  return 0;
}
