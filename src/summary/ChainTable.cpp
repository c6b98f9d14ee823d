#include "ChainTable.h"

#include <span>

#include "../support/Fault.h"

namespace lumbarn {
namespace {

constexpr std::size_t yieldInterval = 1000;  // columns

void yieldAt(std::size_t column, Session& session) {
  if (column % yieldInterval == 0 && session.yield()) throw LoadCanceled();
}

void fillTable(Session& session, const ChainPlan& plan, const RunTables& runs, XYData& merged) {
  merged = XYData(plan.rows(), plan.columns(), session);
  if (plan.rows() == 0) return;
  for (std::size_t column = 1; column <= plan.columns(); ++column) {
    yieldAt(column, session);
    plan.fill(column, runs.tables, merged.column(column));
  }
}

/// Column by column, so that the tables of the runs can be released before it is read back.
void fillFile(Session& session, const ChainPlan& plan, const RunTables& runs, ScratchFile& scratch) {
  constexpr std::size_t atOnce = 1U << 18;  // values in one write, so that short columns share one
  std::vector<float> buffer;
  for (std::size_t column = 1; column <= plan.columns(); ++column) {
    yieldAt(column, session);
    const std::size_t end = buffer.size();
    buffer.resize(end + plan.rows());
    plan.fill(column, runs.tables, std::span(buffer).subspan(end));
    if (buffer.size() >= atOnce || column == plan.columns()) {
      scratch.write(std::span<const float>(buffer));
      buffer.clear();
    }
  }
  scratch.finish();
}

}  // namespace

void mergeTables(Session& session, const ChainPlan& plan, const RunTables& runs, XYData& merged) {
  try {
    return fillTable(session, plan, runs, merged);
  } catch (const Fault& fault) {
    if (fault.number() != FaultNumber::OutOfMemory) throw;
  }
  mergeThroughFile(session, plan, runs, merged);
}

void mergeThroughFile(Session& session, const ChainPlan& plan, const RunTables& runs, XYData& merged) {
  session.checkMemory(plan.rows() * plan.columns() * sizeof(float));
  ScratchFile scratch("MS");
  fillFile(session, plan, runs, scratch);
  runs.release();
  try {
    merged = XYData(plan.rows(), plan.columns(), session);
    scratch.read(merged.values());
  } catch (const Fault&) {
    merged = XYData();
    runs.restore(scratch);
    throw;
  }
}

}  // namespace lumbarn
