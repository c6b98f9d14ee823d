// Finding and reading the rows of one run.

#include <algorithm>
#include <filesystem>
#include <limits>
#include <numeric>

#include "../files/FileSets.h"
#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "ColumnReader.h"
#include "ScratchFile.h"
#include "qvEclipseSUMMARY.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSUMMARY";

/// Columns that are gathered at once for a scratch file: enough to make few passes over the files, little
/// enough for a machine that has just run out of memory.
constexpr std::size_t scratchBytes = std::size_t{64} << 20;

std::uint64_t totalSize(std::span<const std::string> files) {
  std::uint64_t bytes = 0;
  for (const auto& file : files) {
    std::error_code none;
    const auto size = std::filesystem::file_size(file, none);
    if (!none) bytes += size;
  }
  return bytes;
}

}  // namespace

std::int64_t estimatedRows(std::uint64_t bytes, std::int64_t nFiles, std::int64_t nVectors) {
  const auto files = static_cast<std::uint64_t>(std::max<std::int64_t>(nFiles, 1));
  const std::uint64_t perFile = std::max<std::uint64_t>(bytes / files, 1);
  if (nVectors < 1) return 1;
  const double rows =
      static_cast<double>(perFile) * static_cast<double>(files) / (static_cast<double>(nVectors) * 4) + 1;
  return static_cast<std::int64_t>(rows);
}

std::vector<std::int32_t> stepsAfterGrowth(std::span<const RowPlace> rows, std::int64_t capacity) {
  constexpr std::size_t growth = 100;
  std::vector<std::int32_t> steps(rows.size());
  auto room = static_cast<std::size_t>(std::max<std::int64_t>(capacity, 1));
  std::size_t firstKept = 0;
  for (; rows.size() > room; room += growth) firstKept = room;
  for (std::size_t i = firstKept; i < rows.size(); ++i) steps[i] = rows[i].iStep;
  return steps;
}

bool qvEclipseSUMMARY::read() {
  return succeeds(*session_, className, "getEclipseSummaryFile", [&] { return readRun(); });
}

bool qvEclipseSUMMARY::readRun() {
  nRows = 0;
  qDamaged = false;
  tooLarge_ = false;
  RowIndexRequest request;
  if (Unified) {
    request.limits = stepLimits("SUMMARY", iStart, iEnd);
    if (nFiles != 1 && !setUnifiedName()) return false;
    request.resume = {iPosition, iPositionHigh};
  }
  request.zFiles = zFiles;
  request.form = form();
  request.unified = Unified;
  request.nValues = nAllKeys;
  request.iRestartStep = iRestartStep;
  request.timeFirst = timeFirst;
  request.sparse = readsSparsely(iSelected.size(), static_cast<std::size_t>(nAllKeys));
  if (session_->Container && nFiles > 1) session_->Container->files(nFiles);

  index_ = indexRows(request, *session_);
  iPosition = index_.resume.low;
  iPositionHigh = index_.resume.high;
  nRows = static_cast<std::int32_t>(
      std::min<std::size_t>(index_.rows.size(), std::numeric_limits<std::int32_t>::max()));
  iSteps = stepsAfterGrowth(index_.rows, estimatedRows(totalSize(zFiles), nFiles, nSelected));
  qDamaged = index_.damaged || index_.cutOff || index_.faulty;
  if (!index_.opened || index_.cancelled) return false;
  if (index_.damaged && !AcceptDamaged) return false;

  try {
    sData_ = readColumns(iSelected);
  } catch (const Fault& fault) {
    if (fault.number() != FaultNumber::OutOfMemory) throw;
    tooLarge_ = true;
    return true;
  }
  if (session_->cancelled()) return false;
  return AcceptDamaged || !index_.damaged;
}

/// Without a file that was chosen, the unified file has the name that belongs to the specification.
bool qvEclipseSUMMARY::setUnifiedName() {
  const std::string unified = fileNameOfKind(zFileName, "SUMMARY", true, Formatted).name;
  if (!unified.empty()) setMultList(1, {unified});
  return !unified.empty();
}

/// The columns of these vectors, for the rows that can be read: damage within a row is found only when its
/// values are read. The index then loses that row and those after it in the same file.
XYData qvEclipseSUMMARY::readColumns(std::span<const std::int32_t> vectors) {
  XYData table(index_.rows.size(), vectors.size(), *session_);
  readInto(table, vectors);
  return table;
}

void qvEclipseSUMMARY::readInto(XYData& table, std::span<const std::int32_t> vectors) {
  ColumnReader reader(zFiles, index_.stamps, form(), nAllKeys, *session_);
  std::vector<float*> columns(vectors.size());
  std::size_t done = 0;
  for (bool again = true; again;) {
    again = false;
    for (std::size_t i = 0; i < columns.size(); ++i) columns[i] = table.column(i + 1).data() + done;
    try {
      reader.read(std::span(index_.rows).subspan(done), vectors, columns);
    } catch (BadRecord& damage) {
      const bool changed = damage.diagnosis().message == Message::FileChanged;
      done = changed ? 0 : done + reader.rowsDone();
      dropDamagedRows(damage.diagnosis(), done);
      again = !changed && done < index_.rows.size();
    }
  }
  table.cutRows(index_.rows.size());
}

/// Without the rows from `good` on to the end of their file. A file that changed while it was read may be of
/// another run, and so may those before it, so then no rows remain.
void qvEclipseSUMMARY::dropDamagedRows(Diagnosis& diagnosis, std::size_t good) {
  auto& rows = index_.rows;
  const auto first = rows.begin() + static_cast<std::ptrdiff_t>(good);
  auto end = rows.end();
  const bool changed = diagnosis.message == Message::FileChanged;
  if (!changed) {
    end = std::ranges::find_if(first, rows.end(),
                               [iFile = first->iFile](const RowPlace& row) { return row.iFile != iFile; });
  }
  describeLoss(diagnosis, good, nFiles == 1 && !changed, end != rows.end());
  session_->diagnose(std::move(diagnosis));
  const auto step = iSteps.begin() + static_cast<std::ptrdiff_t>(good);
  iSteps.erase(step, step + (end - first));
  rows.erase(first, end);
  nRows = static_cast<std::int32_t>(rows.size());
  index_.damaged = qDamaged = true;
}

XYData qvEclipseSUMMARY::takeTable() {
  return inRoutine(className, "getSummaryArray",
                   [&] { return tooLarge_ ? throughScratchFile() : std::move(sData_); });
}

XYData qvEclipseSUMMARY::tableOf(const std::vector<bool>& qMask) {
  return inRoutine(className, "getSummaryArray", [&] {
    std::vector<std::int32_t> wanted;
    for (std::size_t i = 0; i < std::min(qMask.size(), static_cast<std::size_t>(nAllKeys)); ++i) {
      if (qMask[i]) wanted.push_back(static_cast<std::int32_t>(i + 1));
    }
    return readColumns(wanted);
  });
}

std::vector<float> qvEclipseSUMMARY::column(std::int32_t iVector) {
  return inRoutine(className, "GetColumnData", [&] {
    if (iVector < 1 || iVector > nSelected) throw Fault(FaultNumber::Subscript);
    const auto copied = [](std::span<const float> values) {
      return std::vector<float>(values.begin(), values.end());
    };
    if (!sData_.empty()) return copied(sData_.column(static_cast<std::size_t>(iVector)));
    return copied(
        readColumns(std::span(iSelected).subspan(static_cast<std::size_t>(iVector - 1), 1)).values());
  });
}

/// The table by way of a file on disk, for a machine that cannot hold it twice, or at all: the host may read
/// such a file by itself, piece by piece.
XYData qvEclipseSUMMARY::throughScratchFile() {
  ScratchFile scratch("ES");
  writeScratchFile(scratch);
  if (SaveScratchFile) {
    zScratchFile = scratch.release();
    return {};
  }
  XYData table(index_.rows.size(), static_cast<std::size_t>(nSelected), *session_);
  scratch.read(table.values());
  return table;
}

void qvEclipseSUMMARY::writeScratchFile(ScratchFile& scratch) {
  const std::size_t rows = index_.rows.size();
  if (SaveScratchFile) {
    // Number of dimensions, two words that hosts take as fixed, lower bounds, upper bounds.
    const std::int32_t header[] = {2, 2, 3, 1, 1, nRows, nSelected};
    scratch.write(std::span<const std::int32_t>(header));
  }
  const std::size_t limit =
      session_->memoryLimit == 0 ? scratchBytes : std::min(scratchBytes, session_->memoryLimit);
  const std::size_t atOnce = std::max<std::size_t>(1, limit / sizeof(float) / std::max<std::size_t>(rows, 1));
  for (std::size_t first = 0; first < iSelected.size() && !session_->cancelled(); first += atOnce) {
    const auto part = std::span(iSelected).subspan(first, std::min(atOnce, iSelected.size() - first));
    const auto table = readColumns(part);
    if (table.rows() != rows)
      throw Fault(FaultNumber::PastEnd, "the summary data changed while they were read");
    scratch.write(table.values());
  }
  scratch.finish();
}

}  // namespace lumbarn
