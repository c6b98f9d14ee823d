#include "StepArrays.h"

#include <algorithm>
#include <utility>

#include "../arrays/DerivedSaturation.h"
#include "../index/ActiveCount.h"
#include "../index/RestartIndex.h"
#include "../shapes/OnlyList.h"
#include "../support/Diagnosis.h"

namespace lumbarn {

namespace {

/// The saturation that is missing is what the others leave, by the phases of the run.
void addDerivedSaturation(RESTARTGRID& grid, const StepOptions& options, const ArrayRequest& request,
                          Session& session) {
  ArrayTable& arrays = grid.arrays;
  const std::int32_t water = arrays.find("SWAT");
  const std::int32_t gas = arrays.find("SGAS");
  const auto derived = derivedSaturation(grid.iPhases, arrays.find("SOIL") > 0, water > 0, gas > 0);
  if (!derived || (options.selection && !options.selection->choosesDerived(derived->name))) return;
  if (!arrays.addDerived(derived->name, "", grid.nActive, request, session)) return;
  if (!arrays.hasValues()) return;
  const auto out = arrays.column(arrays.nVectors());
  const auto one = std::as_const(arrays).column(derived->water ? water : gas);
  const bool both = derived->water && derived->gas;
  const auto other = both ? std::as_const(arrays).column(gas) : std::span<const float>();
  for (std::size_t i = 0; i < out.size(); ++i)
    out[i] = DerivedSaturation::remaining(one[i], both ? other[i] : 0);
}

}  // namespace

bool isKeptArray(const RecordHeader& header, const RESTARTGRID& grid, ArraySelection* selection,
                 Session& session) {
  if (header.type != ElementType::Integer && header.type != ElementType::Single) return false;
  if (header.count != grid.nActive && header.count != grid.nCells) return false;
  if (isRefusedArrayName(header.keyword)) return false;
  return checkEclipseONLYList(session, header.keyword) && (!selection || selection->chooses(header.keyword));
}

std::vector<std::string> keptNames(std::span<const RecordHeader> headers, const RESTARTGRID& grid,
                                   ArraySelection* selection, Session& session) {
  std::vector<std::string> names;
  for (const RecordHeader& header : headers) {
    if (isKeptArray(header, grid, selection, session)) names.push_back(header.keyword);
  }
  return names;
}

bool isUsualRecord(const RecordHeader& header) {
  switch (header.type) {
    case ElementType::Integer:
    case ElementType::Single:
    case ElementType::Double:
    case ElementType::Text:
    case ElementType::Logical:
      return true;
    default:
      return header.count <= 0;
  }
}

ArraysAhead arraysAhead(RecordCursor& cursor) {
  constexpr std::string_view nextSection[] = {"", "SEQNUM", "LGR", "ENDLGR", "LGRSGONE"};
  const auto start = cursor.mark();
  ArraysAhead ahead;
  try {
    while (ahead.usual && cursor.next()) {
      const RecordHeader& header = cursor.header();
      if (std::ranges::find(nextSection, header.keyword) != std::end(nextSection)) break;
      ahead.usual = isUsualRecord(header);
      if (header.count > 0 && mayBeCellArray(header.type, header.keyword)) ahead.candidates.push_back(header);
    }
  } catch (const BadRecord& damage) {
    if (damage.diagnosis().message == Message::FileRead) throw;
    ahead.usual = false;  // the walk reports it if it is in this step
  }
  cursor.goBack(start);
  return ahead;
}

void decideActiveCells(StepData& step, std::span<const RecordHeader> candidates) {
  RESTARTGRID& grid = step.grid();
  ArrayLengths lengths;
  for (const RecordHeader& header : candidates) lengths.add(header.count);
  GridCells cells = gridCells(step.iHeader, false);
  cells.cells = grid.nCells;
  cells.active = grid.nActive;
  grid.nActive = static_cast<std::int32_t>(lengths.decideActive(cells));
}

void addDerivedSaturations(StepData& step, const StepOptions& options, Session& session) {
  const ArrayRequest request{options.LoadData, step.nVectorEstimate};
  for (step.iGrid = 1;; ++step.iGrid) {
    addDerivedSaturation(step.grid(), options, request, session);
    if (step.iGrid >= step.nGrids) return;
  }
}

}  // namespace lumbarn
