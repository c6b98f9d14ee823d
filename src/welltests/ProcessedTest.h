#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "../support/Export.h"
#include "TestHeader.h"
#include "TestRecords.h"
#include "TestTables.h"

namespace lumbarn {

/// Options of the PLT arithmetic. Nothing in the system ever changes those of a test, see `qvEclipseRFT`.
struct TestOptions {
  bool ProcessPLT = true;  ///< re-form the PLT table at all
  bool SortedPLT = true;   ///< rows by measured depth
  bool ScaledPLT = true;   ///< rates by length of connection. False ends the re-forming of a test with
                           ///< rates in a fault: the table of results asks for the scaled columns all the
                           ///< same
  float ICDLength = 0.1F;  ///< length of the segments that represent inflow control devices
  bool ProcessICD = true;
};

/// A well test as hosts know it: its records, and what the processing derives from them.
struct LUMBARN_API ProcessedTest {
  explicit ProcessedTest(TestTable::Memory* memory) : header(memory), tables(memory) {}

  std::int32_t number = 0;  ///< within the well, from 1; 0 before numbering
  TestHeader header;
  TestTables tables;  ///< the processing adds columns, and replaces the PLT table

  std::string gasOilUnit;
  std::vector<std::int32_t> rowOrder;  ///< rows of the file in the order of the PLT table, from 1; empty: the
                                       ///< order of the file
  bool hasPltBranches = false;
  bool impliedBranches = false;  ///< PLT branches beyond the list have their position as number
  std::int32_t nPltBranches = 0;
  std::int32_t pltBranchColumn = -1;  ///< column of CONBRNO in the PLT table
  std::vector<BranchRecord> branches;
  std::vector<SegmentRecord> segments;
  std::vector<ICDBranchRecord> deviceBranches;
  bool hasDevices = false;
  std::int32_t nDevices = 0;
  std::int32_t nMovedBranches = 0;  ///< branches of devices, removed from the list

  // Hosts get these from a WELLETC that was read to its end only.
  std::string_view well() const { return header.named ? header.well() : std::string_view(); }
  std::string_view grid() const { return header.named ? header.grid() : std::string_view(); }
  std::string_view wellType() const { return getWellType(header.named ? header.wellType() : ""); }
  std::int32_t nBranches() const { return tables.nBranches - nMovedBranches; }
  std::int32_t nDeviceBranches() const { return static_cast<std::int32_t>(deviceBranches.size()); }
  /// Throws Fault 9 for a segment that is not there.
  const SegmentRecord& segment(std::int64_t i) const;
};

}  // namespace lumbarn
