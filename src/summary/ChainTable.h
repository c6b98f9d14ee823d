#pragma once

#include <functional>
#include <vector>

#include "../shapes/XYData.h"
#include "../support/Session.h"
#include "ChainPlan.h"
#include "ScratchFile.h"

namespace lumbarn {

/// The tables that become the table of a restart chain, and what to do with them where memory for all of them
/// does not suffice.
struct RunTables {
  std::vector<const XYData*> tables;  ///< newest run first
  std::function<void()> release;      ///< lets the tables go
  /// Brings back what has to remain, from the values of the chain's table.
  std::function<void(const ScratchFile&)> restore = [](const ScratchFile&) {};
};

/// Fills `merged` from the tables of the runs, by way of a temporary file when there is no memory for it
/// beside them. Throws Fault 7 when there is none after their release either, then restored, and
/// LoadCanceled.
void mergeTables(Session& session, const ChainPlan& plan, const RunTables& runs, XYData& merged);
/// The same by way of the file in any case. Nothing is released when memory beyond the session's limit would
/// be needed.
void mergeThroughFile(Session& session, const ChainPlan& plan, const RunTables& runs, XYData& merged);

}  // namespace lumbarn
