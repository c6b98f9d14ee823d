#include "WellReader.h"

#include "../support/Fault.h"
#include "qvEclipseSEQUENCE.h"

namespace lumbarn {
namespace {

/// Whether what is wrong concerns the file and not one of its records.
bool concernsFile(const Diagnosis& diagnosis) {
  return diagnosis.message == Message::FileRead || diagnosis.message == Message::FileOpen ||
         diagnosis.message == Message::FileChanged;
}

}  // namespace

std::vector<WellRecord> WellReader::read(const IndexStep& step, std::string_view grid) {
  qvEclipseSEQUENCE wells(*session_);
  wells.qMarkers = true;
  if (!isGlobalGrid(grid)) wells.AddLGRGrid(grid);
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

void WellReader::take(qvEclipseSEQUENCE& wells, const IndexStep& step, const IndexEntry& entry) {
  try {
    if (auto misfit = wells.takeWellRecord(records_.moveTo(*index_, step, entry))) report(std::move(*misfit));
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
