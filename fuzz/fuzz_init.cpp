#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "Checks.h"
#include "RecordMutator.h"
#include "init/qvEclipseINIT.h"
#include "reader/qvEclipseReader.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t room);

namespace {

using namespace lumbarn;

/// The file that the input is written to; gone when the process ends as it should.
class InputPlace {
 public:
  InputPlace() : path_(fuzz::temporaryPath(".INIT").string()) {}
  ~InputPlace() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  const std::string& write(std::span<const std::uint8_t> bytes) const {
    std::ofstream(path_, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path_;
  }

 private:
  std::string path_;
};

/// Every table in every view; no view may read outside of what another says is there.
void checkTables(qvEclipseReader& reader) {
  std::vector<std::string> names;
  std::int32_t count = 0;
  bool qOK = false;
  reader.GetTableTypes(names, count, qOK);
  for (const auto& name : names) {
    const auto tables = std::min(reader.NumberTables(name), 3);
    for (std::int32_t i = 1; i <= tables; ++i) {
      std::vector<float> values;
      std::vector<std::int32_t> iDimens;
      std::int32_t nDims = 0;
      reader.getTable(name, i, values, iDimens, nDims, qOK);
      fuzz::check(qOK, "a table that is listed can be had");
      std::size_t product = 1;
      for (const auto size : iDimens) product *= static_cast<std::size_t>(size);
      fuzz::check(product == values.size(), "sizes are those of the values");
      XYData plain;
      ByteTable headers;
      SourceData source;
      reader.GetINITTableData(name, i, plain, headers, source, qOK);
      if (qOK) fuzz::check(headers.entries() >= plain.columns(), "each column has a header");
      const auto physical = reader.GetINITPhysicalTable(name, i, qOK);
      for (const auto& column : physical.columns)
        fuzz::check(column.values.size() == physical.rows(), "columns are of one length");
    }
  }
}

void checkGrid(qvEclipseReader& reader, bool loaded) {
  bool qOK = false;
  const auto& grid = reader.Init()->grid(reader.iGridNumber);
  std::vector<float> active, all;
  std::vector<std::int32_t> cells;
  for (std::int32_t i = 1; i <= std::min(grid.nVectors(), 5); ++i) {
    reader.Init()->GetArray(reader.iGridNumber, i, false, active, qOK);
    if (loaded) fuzz::check(qOK, "an array that was loaded can be had");
    if (qOK) fuzz::check(std::cmp_equal(active.size(), grid.nActive), "a value for each active cell");
    reader.Init()->GetArray(reader.iGridNumber, i, true, all, qOK);
    if (qOK) fuzz::check(std::cmp_equal(all.size(), grid.nCells), "a value for each cell");
  }
  reader.GetINITA2N(cells, qOK);
  for (const auto cell : cells) fuzz::check(cell >= 0 && cell <= grid.nCells, "cells are those of the grid");
  XYData values;
  ByteTable headers, only;
  SourceData source;
  for (std::int32_t kind = 1; kind <= 3; ++kind) {
    reader.GetINITNNCData(kind, values, headers, qOK);
    if (qOK) fuzz::check(headers.entries() == values.columns(), "each connection array has a header");
  }
  reader.GetINITData(values, headers, source, only, qOK);
  if (qOK) fuzz::check(headers.entries() == values.columns(), "each array has a header");
  if (qOK && loaded) fuzz::check(std::cmp_equal(values.rows(), grid.nActive), "a row for each active cell");
}

}  // namespace

/// An INIT file behind a byte of options, loaded with and without values, and everything fetched.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const InputPlace place;
  if (size < 1) return 0;
  Session session;
  int faults = 0;
  session.faultReporter = [&](std::string_view) { ++faults; };
  qvEclipseReader reader(session);
  reader.FileName = place.write({data + 1, size - 1});
  reader.whichtype = 15;
  reader.Silent = true;
  reader.LoadData = (data[0] & 1) != 0;
  reader.AcceptDamaged = (data[0] & 2) != 0;
  if ((data[0] & 4) != 0) reader.zOnly = "P*,DR";
  bool qOK = false;
  reader.ECLReadData(qOK);
  if (!qOK) fuzz::check(!session.diagnoses().empty() || faults > 0, "a failure is told");
  if (!reader.Init()) return 0;
  checkTables(reader);
  const auto grids = std::min(reader.Init()->nGrids(), 5);
  for (reader.iGridNumber = 1; reader.iGridNumber <= grids; ++reader.iGridNumber)
    checkGrid(reader, reader.LoadData && qOK);
  return 0;
}

/// Half of the time whole records are changed, so that damage gets past the record layer.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t room,
                                               unsigned int seed) {
  if (size < 2 || seed % 2 == 0) return LLVMFuzzerMutate(data, size, room);
  const auto changed = fuzz::mutateRecords(fuzz::bytesOf({data + 1, size - 1}), seed / 2);
  if (changed.size() + 1 > room) return size;
  std::ranges::copy(changed, std::as_writable_bytes(std::span(data, room)).subspan(1).begin());
  return changed.size() + 1;
}
