#include "WellReader.h"

#include <limits>

#include "../support/Fault.h"
#include "StepData.h"
#include "StepWells.h"

namespace lumbarn {
namespace {

/// Whether what is wrong concerns the file and not one of its records.
bool concernsFile(const Diagnosis& diagnosis) {
  return diagnosis.message == Message::FileRead || diagnosis.message == Message::FileOpen ||
         diagnosis.message == Message::FileChanged;
}

}  // namespace

std::vector<WellRecord> WellReader::read(const IndexStep& step, std::string_view grid) {
  StepData wells;
  if (!isGlobalGrid(grid)) wells.enterGrid(grid, {});
  // The order counts: each gives the sizes of those behind it.
  constexpr std::string_view names[] = {"INTEHEAD", "ZGRP", "IWEL", "XWEL", "ZWEL", "ICON", "SCON"};
  for (const std::string_view name : names) {
    if (const IndexEntry* entry = step.find(name, grid)) take(wells, step, *entry);
  }
  try {
    return wellRecords(wells.grid());
  } catch (const Fault& fault) {
    session_->diagnose({.message = Message::RecordDamaged,
                        .path = index_->files[step.file],
                        .problem = fault.what(),
                        .keyword = "ICON",
                        .offset = step.position,
                        .action = "left out the wells of the step"});
    return {};
  }
}

/// The cursor counts the records that it meets, which are not all: the place tells more than its count.
void WellReader::report(Diagnosis diagnosis) {
  diagnosis.occurrence = 0;
  diagnosis.action = "skipped the record";
  session_->diagnose(std::move(diagnosis));
}

void WellReader::take(StepData& wells, const IndexStep& step, const IndexEntry& entry) {
  constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
  try {
    RecordCursor& cursor = records_.moveTo(*index_, step, entry);
    if (cursor.header().is("INTEHEAD", ElementType::Integer))
      return takeINTEHEAD(wells, HeaderWords(cursor.integers()));
    const StepOptions options{.qMarkers = true, .noRate = noNumber};
    if (auto misfit = takeWellRecord(cursor, wells.grid(), options, *session_)) report(std::move(*misfit));
  } catch (BadRecord& damage) {
    if (concernsFile(damage.diagnosis())) throw;
    report(std::move(damage.diagnosis()));
  } catch (const Fault& fault) {
    if (fault.number() == FaultNumber::OutOfMemory) throw;
    report({.message = Message::RecordDamaged,
            .path = index_->files[step.file],
            .problem = fault.what(),
            .keyword = std::string(entry.keyword.view()),
            .offset = entry.position});
  }
}

}  // namespace lumbarn
