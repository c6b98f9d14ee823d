#include "GridFile.h"

#include <exception>
#include <utility>

#include <fmt/format.h>

#include "EGridRecords.h"
#include "GridRecords.h"
#include "GridSet.h"

namespace lumbarn {

std::optional<GridFile> recogniseGridFile(const std::string& path, bool egrid) {
  std::string error;
  const auto source = FileSource::open(path, error);
  if (!source) return std::nullopt;
  const std::string_view keywords[] = {egrid ? "FILEHEAD" : "DIMENS"};
  const auto detected = detectForm(*source, keywords);
  if (!detected) return std::nullopt;
  GridFile file{.path = path, .form = {}, .egrid = egrid};
  file.form.setForm(detected->form);
  return file;
}

std::shared_ptr<const ByteSource> GridFile::open() const {
  std::string error;
  std::shared_ptr<const ByteSource> source = FileSource::open(path, error);
  if (!source) throw BadRecord({.message = Message::FileOpen, .path = path, .problem = error});
  return source;
}

bool readGridFile(const GridFile& file, std::shared_ptr<const ByteSource> source,
                  const GridReadOptions& options, Session& session, GridFileContent& content) {
  RecordCursor cursor(source, file.form.form(), file.path);
  cursor.attach(session, file.egrid ? RecordFile::EGrid : RecordFile::Grid);
  GridSet set(cursor, options, session);
  GridRecords cells(set, source);
  bool whole = false, passed = false;
  // Keeps the complete grids; says how many there are.
  const auto keep = [&](bool damaged) {
    content.damaged = damaged;
    set.join();
    content.grids = std::move(set.grids);
    return fmt::format("kept {} {}", content.grids.size(), content.grids.size() == 1 ? "grid" : "grids");
  };
  try {
    EGridRecords arrays(set);
    whole = file.egrid ? arrays.read() : cells.read();
    passed = arrays.damaged();
    if (whole && set.grids.empty()) set.fail(Message::GridMissing, "a grid", "none");
    cursor.checkUnchanged();
  } catch (const LoadCanceled&) {
    keep(false);
    return false;
  } catch (BadRecord& damage) {
    Diagnosis& diagnosis = damage.diagnosis();
    // The records of most cells pass by the cursor.
    if (diagnosis.keyword == "COORDS" || diagnosis.keyword == "CORNERS") {
      diagnosis.occurrence += cells.uncounted();
    }
    diagnosis.action = keep(true);
    throw;
  } catch (const std::exception& fault) {
    session.diagnose(Diagnosis{.message = Message::SystemFault,
                               .path = file.path,
                               .problem = fault.what(),
                               .keyword = cursor.header().keyword,
                               .offset = cursor.header().headerAt,
                               .action = keep(true)});
    throw;
  }
  keep(passed);
  return whole && !passed;
}

}  // namespace lumbarn
