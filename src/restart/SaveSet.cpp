#include "SaveSet.h"

#include <memory>

#include "../files/Extensions.h"
#include "../files/FileSets.h"
#include "../files/Folder.h"
#include "../record/ByteSource.h"
#include "../support/Diagnosis.h"
#include "../support/Guarded.h"

namespace lumbarn {
namespace {

void tellProgress(const Session& session, const RecordCursor& cursor) {
  if (!session.Container || cursor.fileSize() == 0) return;
  session.Container->fraction(static_cast<double>(cursor.nextPosition()) /
                              static_cast<double>(cursor.fileSize()));
}

/// The loop over the files and steps of a set.
class SaveSetReader {
 public:
  SaveSetReader(SaveSet& set, const Form& form, Session& session)
      : set_(set), form_(form), session_(session) {}

  bool read() {
    if (!findFiles()) return false;
    wanted_ = set_.Unified ? stepLimits("SAVE", set_.iStart, set_.iEnd) : StepLimits{};
    Progress* const progress = set_.nMultList > 1 ? session_.Container : nullptr;
    if (progress) progress->files(set_.nMultList);
    for (const std::string& path : set_.zMultList) {
      if (session_.yield()) return false;
      // A set with gaps is usual, so a missing file is not reported.
      const bool exists = set_.Unified || isFile(path);
      if (exists && !readFile(path)) return false;
      if (progress) progress->fileDone();
      if (stop_) break;
    }
    return true;
  }

 private:
  /// Decides which files are read.
  bool findFiles() {
    bool qOK = true;
    if (set_.Unified) {
      std::string name = set_.FileName;
      if (meaningOf(FileName(name).extension).kind != FileKind::Unknown) {
        name = fileNameOfKind(name, "SAVE", true, form_.formatted()).name;
        qOK = !name.empty();
      }
      set_.setFiles({name});
      set_.found = set_.zMultList;
    } else if (set_.zMultList.empty() || set_.zMultList == set_.found) {
      GetFileNamesToLoad(set_.FileName, set_.iStart, set_.iEnd, false, "SAVE", set_.nMultList, set_.zMultList,
                         qOK, session_);
      set_.found = set_.zMultList;
    }
    return qOK;
  }

  bool readFile(const std::string& path) {
    std::string why;
    std::shared_ptr<const ByteSource> source = FileSource::open(path, why);
    if (!source) return passOver(path, why);
    RecordCursor cursor(std::move(source), form_, path);
    cursor.attach(session_, RecordFile::Save);
    const std::int32_t iFile = set_.Unified ? -1 : GetNumericPartOfFileName(path);
    for (fileDone_ = false; !fileDone_;) {
      if (!readStep(cursor, iFile)) return false;
      if (set_.nMultList <= 1) tellProgress(session_, cursor);
    }
    cursor.checkUnchanged();
    stop_ = set_.NumSequences > 0 && set_.xSEQ.back().qPastEnd;
    return true;
  }

  /// Only a missing file can be.
  bool passOver(const std::string& path, const std::string& why) {
    const bool missing = set_.Unified && !isFile(path);
    session_.diagnose({.message = Message::FileOpen,
                       .path = path,
                       .problem = "cannot be opened: " + why,
                       .action = missing ? "skipped the file" : "stopped"});
    return missing;
  }

  /// Reads one step and keeps it if it is wanted.
  bool readStep(RecordCursor& cursor, std::int32_t iFile) {
    qvEclipseSAVESequence step(session_);
    step.Unified = set_.Unified;
    // In a unified set the working limit, so that a range given the wrong way round has its one step.
    step.iEnd = set_.Unified ? wanted_.last : set_.iEnd;
    step.iFile = iFile;
    const bool done = succeeds(session_, "qvEclipseSAVESequence", "getEclipseSAVESequence",
                               [&] { return readSaveStep(cursor, step, session_); });
    // A file that begins with SAVEHEAD states its simulator there and has no headers of further steps.
    fileDone_ = !set_.Unified || set_.qSaveHead || step.qPastEnd || step.qCutOff || step.nRecords == 0 ||
                cursor.nextPosition() >= cursor.fileSize();
    if (step.qCutOff || (done && step.nRecords == 0)) return !session_.cancelled();
    if (!done) return false;
    const std::int32_t iStep = step.step();
    if (wanted_.contain(iStep)) set_.add(std::move(step));
    fileDone_ = fileDone_ || wanted_.endAt(iStep);
    return !session_.yield();
  }

  SaveSet& set_;
  Form form_;
  Session& session_;
  StepLimits wanted_;
  bool fileDone_ = false;  // the file has no more steps
  bool stop_ = false;
};

}  // namespace

void SaveSet::add(qvEclipseSAVESequence step) {
  xSEQ.push_back(std::move(step));
  NumSequences = static_cast<std::int32_t>(xSEQ.size());
}

std::optional<SaveFileForm> formOfSaveFile(const std::string& path) {
  std::string why;
  const auto source = FileSource::open(path, why);
  if (!source) return std::nullopt;
  constexpr std::string_view firstKeywords[] = {"INITIAL", "SAVEHEAD", "STATIC", "DYNAMIC"};
  const auto detected = detectForm(*source, firstKeywords);
  if (!detected) return std::nullopt;
  return SaveFileForm{detected->form, detected->keyword == "SAVEHEAD"};
}

bool readSaveSet(SaveSet& set, const Form& form, Session& session) {
  set.xSEQ.clear();
  set.NumSequences = 0;
  return SaveSetReader(set, form, session).read();
}

}  // namespace lumbarn
