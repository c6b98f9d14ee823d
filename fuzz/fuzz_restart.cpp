#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "Checks.h"
#include "RecordMutator.h"
#include "reader/qvEclipseReader.h"
#include "record/RecordCursor.h"
#include "restart/MarkerBlock.h"
#include "restart/MarkerTable.h"
#include "restart/qvEclipseSAVE.h"
#include "restart/qvEclipseSOLUTION.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t room);

namespace {

using namespace lumbarn;

/// One byte of options, then the file: a restart file, a save file, or a packed block of markers.
constexpr std::size_t front = 1;
enum Option : std::uint8_t { acceptDamaged = 1, fullWells = 2, multiple = 4, save = 8, markers = 16 };

/// A folder of this process for the file; gone when the process ends as it should.
class Folder {
 public:
  Folder() : path_(fuzz::temporaryPath()) { std::filesystem::create_directories(path_); }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string write(const std::string& name, const std::vector<std::byte>& bytes) const {
    const auto path = (path_ / name).string();
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path;
  }

 private:
  std::filesystem::path path_;
};

/// The faults that a file can bring about: a cell count that overflows, and memory that is not there.
void checkFault(std::string_view text) {
  const bool ofTheFile = text.find("(No.6)") != text.npos || text.find("(No.7)") != text.npos;
  fuzz::check(ofTheFile, text);
}

void setUp(qvEclipseReader& reader, const std::string& path, std::uint8_t options, bool qValues) {
  reader.session().faultReporter = checkFault;
  reader.FileName = path;
  reader.whichtype = 11;
  reader.Silent = true;
  reader.LoadData = qValues;
  reader.AcceptDamaged = (options & acceptDamaged) != 0;
  reader.FullWellInfo = (options & fullWells) != 0;
  reader.MarkerMethod = 6;  // the long form, in which no name is cut
}

/// Every array against a plain reading of the record at its place.
void checkArrays(const RESTARTGRID& grid, RecordCursor& records) {
  const ArrayTable& arrays = grid.arrays;
  for (std::int32_t i = 1; i <= arrays.nVectors(); ++i) {
    const KeptArray& array = arrays.arrays()[static_cast<std::size_t>(i) - 1];
    const auto values = arrays.column(i);
    if (array.kind == ArrayKind::Derived) {
      for (const float value : values) fuzz::check(!(value < 0 || value > 1), "a saturation is one");
      continue;
    }
    records.seek(array.header.headerAt);
    fuzz::check(records.next() && records.header().keyword == array.name, "an array is where it was");
    std::vector<float> plain;
    if (array.kind == ArrayKind::Single) {
      plain = records.singles();
    } else {
      for (const auto value : records.integers()) plain.push_back(static_cast<float>(value));
    }
    fuzz::check(plain.size() == values.size() &&
                    (plain.empty() || std::memcmp(plain.data(), values.data(), values.size_bytes()) == 0),
                "a value is that of the file");
  }
}

/// What a block says of itself holds, and all of it can be read.
MarkerTable checkBlock(const MarkerBlock& block, std::size_t bytes) {
  const MarkerHeader& header = block.header();
  const auto rowBytes = static_cast<std::size_t>(header.nRowBytes);
  fuzz::check(block.rows() == 0 || rowBytes <= bytes / block.rows(), "the rows lie in the block");
  std::int32_t wells = 0;
  for (std::size_t iRow = 1; iRow <= block.rows(); ++iRow) wells += block.kind(iRow) == MarkerKind::Well;
  fuzz::check(wells == header.nWells && header.nWells + header.nPerfs == header.nRows,
              "wells and connections");
  return block.table();
}

/// The packed markers of a step are its rows, bit by bit.
void checkMarkers(const MarkerTable& rows, std::int32_t nMarkers, const std::vector<std::byte>& packed) {
  MarkerBlock block;
  std::string why;
  fuzz::check(block.open(packed, why), why);
  const MarkerTable unpacked = checkBlock(block, packed.size());
  fuzz::check(std::cmp_equal(rows.used(), nMarkers) && unpacked.used() == rows.used(), "as many rows");
  const auto isNumber = [](const Variant& item) {
    const auto* number = std::get_if<double>(&item);
    return !number || *number == *number;
  };
  for (std::size_t iRow = 1; iRow <= rows.used(); ++iRow) {
    for (std::size_t iItem = 1; iItem <= MarkerTable::nItems; ++iItem) {
      const Variant item = rows(iRow, iItem);
      const Variant other = unpacked(iRow, iItem);
      fuzz::check(isNumber(item) ? item == other : !isNumber(other), "a packed item is that of the row");
    }
  }
}

void checkFetch(qvEclipseReader& reader, std::int32_t step, std::int32_t grid) {
  XYData table;
  ByteTable headers;
  SourceData source;
  MarkerTable rows;
  std::vector<std::byte> block;
  std::int32_t nMarkers = 0;
  ColumnTable<std::int32_t> places;
  bool qFOD = false;
  bool qOK = false;
  reader.iGridNumber = grid;
  const auto* held = reader.RestartGrid(step, grid);
  // A table of active cells cannot be had from arrays of fewer cells.
  if (held->arrays.length() < static_cast<std::size_t>(std::max(held->nActive, 0))) return;
  reader.GetRESTARTSEQUENCE(step, table, headers, source, rows, nMarkers, qOK);
  fuzz::check(qOK == (held->arrays.nVectors() > 0), "a grid with arrays can be fetched");
  const std::int32_t nRows = nMarkers;
  reader.GetRESTARTSEQUENCEFODb(step, table, headers, source, block, nMarkers, places, qFOD, qOK);
  fuzz::check(nRows == nMarkers, "as many markers either way");
  if (nMarkers > 0) checkMarkers(rows, nMarkers, block);
  fuzz::check(places.columns() == static_cast<std::size_t>(held->arrays.nVectors()),
              "a place for each array");
}

void checkSave(const Folder& folder, std::uint8_t options, const std::vector<std::byte>& file) {
  const auto path = folder.write((options & multiple) != 0 ? "RUN.V0001" : "RUN.SAVE", file);
  Session session;
  // A header that promises more words than it has is a fault by design.
  session.faultReporter = [](std::string_view text) {
    fuzz::check(text.find("(No.9)") != text.npos || text.find("(No.7)") != text.npos, text);
  };
  qvEclipseSAVE run(session);
  if (run.CheckSAVEFile(path)) {
    bool qOK = false;
    run.getSAVEData(qOK);
    fuzz::check(qOK || !session.diagnoses().empty(), "a failure is told");
    fuzz::check(run.xSEQ.size() == static_cast<std::size_t>(std::max(run.NumSequences, 1)),
                "a place for each step");
    std::vector<std::int32_t> iSteps;
    std::vector<double> dTimes;
    std::int32_t nSteps = 0;
    run.GetRestartRecordTimesAndSteps(iSteps, dTimes, nSteps, qOK);
    fuzz::check(qOK && nSteps == run.NumSequences && iSteps.size() == dTimes.size(), "a time for each step");
  }
  std::filesystem::remove(path);
}

void checkRestart(const Folder& folder, std::uint8_t options, const std::vector<std::byte>& file) {
  const auto source = std::make_shared<MemorySource>(file);
  const auto form = detectForm(*source);
  const bool text = form && form->form.formatted();
  const auto unified = text ? "RUN.FUNRST" : "RUN.UNRST";
  const auto path =
      folder.write((options & multiple) != 0 ? (text ? "RUN.F0001" : "RUN.X0001") : unified, file);

  Session session;
  qvEclipseReader whole(session);
  setUp(whole, path, options, true);
  bool qOK = false;
  whole.ECLReadData(qOK);
  fuzz::check(qOK || !session.diagnoses().empty(), "a failure is told");
  fuzz::check(!whole.Damaged() || !session.diagnoses().empty(), "damage is told");

  Session other;
  qvEclipseReader places(other);
  setUp(places, path, options, false);
  bool qPlaces = false;
  places.ECLReadData(qPlaces);
  const auto steps = whole.RestartSteps();
  fuzz::check(places.RestartSteps().size() >= steps.size(), "what can be loaded can be listed");
  if (form) {
    RecordCursor records(source, form->form, "fuzz input");
    for (std::int32_t step = 1; step <= static_cast<std::int32_t>(steps.size()); ++step) {
      for (std::int32_t grid = 1; grid <= steps[static_cast<std::size_t>(step) - 1].nGrids; ++grid) {
        checkArrays(*whole.RestartGrid(step, grid), records);
        checkFetch(whole, step, grid);
      }
    }
  }
  std::filesystem::remove(path);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size, std::size_t room,
                                               unsigned seed) {
  const bool isBlock = size > 0 && (bytes[0] & markers) != 0;
  if (size <= front || isBlock || seed % 3 == 0) return LLVMFuzzerMutate(bytes, size, room);
  const auto mutated = fuzz::mutateRecords(fuzz::bytesOf({bytes + front, size - front}), seed / 3);
  if (mutated.size() + front > room) return size;
  std::ranges::copy(mutated, std::as_writable_bytes(std::span(bytes, room)).begin() + front);
  return mutated.size() + front;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const Folder folder;
  if (size <= front) return 0;
  const std::uint8_t options = bytes[0];
  const auto file = fuzz::bytesOf({bytes + front, size - front});
  if ((options & markers) != 0) {
    MarkerBlock block;
    std::string why;
    const bool qOpen = block.open(file, why);
    fuzz::check(qOpen == why.empty(), "a block that is none is told");
    if (qOpen) checkBlock(block, file.size());
  } else if ((options & save) != 0) {
    checkSave(folder, options, file);
  } else {
    checkRestart(folder, options, file);
  }
  return 0;
}
