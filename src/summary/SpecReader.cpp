#include "SpecReader.h"

#include <memory>
#include <string>
#include <utility>

#include "../record/ByteSource.h"
#include "../record/RecordCursor.h"
#include "../support/Guarded.h"
#include "SpecProcessing.h"
#include "SpecRecords.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseSPEC";

/// RESTART and INIT files begin with INTEHEAD too; the second record tells them from a specification.
bool secondRecordFits(std::shared_ptr<const ByteSource> source, const Form& form, const std::string& path) {
  RecordCursor cursor(std::move(source), form, path);
  if (!cursor.next() || !cursor.next()) return false;
  const std::string& keyword = cursor.header().keyword;
  return keyword == "RESTART" || keyword == "DIMENS";
}

/// Forgets what was read; what to read and how stays.
void clear(SummarySpec& spec) {
  SummarySpec empty;
  empty.zFileName = std::move(spec.zFileName);
  empty.setFlags(spec);
  empty.Unified = spec.Unified;
  empty.qScanOnly = spec.qScanOnly;
  empty.UseBufferedInput = spec.UseBufferedInput;
  empty.zOrigin = std::move(spec.zOrigin);
  empty.xStore.reset();
  spec = std::move(empty);
}

/// False when the file is not there, damaged behind KEYWORDS (qDamaged), or the load was cancelled.
bool readRecords(SummarySpec& spec, Session& session) {
  std::string error;
  std::shared_ptr<const ByteSource> source = FileSource::open(spec.zFileName, error);
  if (!source) {
    session.diagnose(
        {.message = Message::FileOpen, .path = spec.zFileName, .problem = "cannot be opened: " + error});
    return false;
  }
  RecordCursor cursor(std::move(source), spec.form(), spec.zFileName);
  cursor.attach(session, RecordFile::Specification);
  SpecRecords records(spec, cursor, session);
  try {
    if (!records.read()) return false;
    cursor.checkUnchanged();
  } catch (BadRecord& damage) {
    if (!records.haveKeywords()) {
      damage.diagnosis().action = "read no vectors";
      throw;
    }
    spec.qDamaged = true;
    Diagnosis diagnosis = damage.diagnosis();
    diagnosis.action = "kept " + std::to_string(spec.nVectors) + " vectors and what stands before the damage";
    session.diagnose(std::move(diagnosis));
  }
  if (spec.qScanOnly) return true;
  records.join();
  spec.qLoaded = SpecProcessing(spec, session).processSPECRecords();
  if (!spec.qLoaded) spec.qDamaged = false;  // cancelled: nothing is to be used
  return spec.qLoaded && !spec.qDamaged;
}

}  // namespace

bool checkSpec(SummarySpec& spec, std::string_view zFile, Session& session) {
  return succeeds(session, className, "CheckSPECFile", [&] {
    const std::string path(zFile);
    std::string error;
    const std::shared_ptr<const ByteSource> source = FileSource::open(path, error);
    if (!source) return false;
    constexpr std::string_view firstKeywords[] = {"RESTART", "INTEHEAD"};
    const auto detected = detectForm(*source, firstKeywords);
    if (!detected) return false;
    if (detected->keyword == "INTEHEAD") {
      try {
        if (!secondRecordFits(source, detected->form, path)) return false;
      } catch (const BadRecord& damage) {
        if (damage.diagnosis().message == Message::FileRead) throw;
        return false;  // a question was asked, and the answer is no: nothing to tell
      }
    }
    spec.zFileName = path;
    spec.setForm(detected->form);
    spec.FORTRAN = true;
    return true;
  });
}

bool readSpec(SummarySpec& spec, Session& session) {
  return succeeds(session, className, "ReadEclipseSPECFile", [&] {
    clear(spec);
    try {
      const bool whole = readRecords(spec, session);
      if (!whole && !spec.qDamaged) clear(spec);
      return whole;
    } catch (...) {
      clear(spec);
      throw;
    }
  });
}

}  // namespace lumbarn
