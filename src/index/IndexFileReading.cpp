#include "IndexFileReading.h"

#include <memory>
#include <utility>

#include "../record/ByteSource.h"
#include "../record/RecordCursor.h"
#include "../shapes/VectorNames.h"
#include "ActiveCount.h"
#include "RestartIndexHeads.h"

namespace lumbarn {
namespace {

bool opensStep(const RecordHeader& header) { return header.is("TIME", ElementType::Double); }

bool opensPass(const RecordHeader& header) {
  return opensStep(header) || header.is("NAME", ElementType::Text) || header.is("LGRNAME", ElementType::Text);
}

/// Null, with a diagnosis, when the file cannot be opened.
std::unique_ptr<RecordCursor> openIndexFile(const std::string& path, const Form& form, Session& session) {
  std::string error;
  std::shared_ptr<const ByteSource> source = FileSource::open(path, error);
  if (!source) {
    session.diagnose(
        {.message = Message::FileOpen, .path = path, .problem = error, .action = "read nothing of it"});
    return nullptr;
  }
  auto cursor = std::make_unique<RecordCursor>(std::move(source), form, path);
  cursor->attach(session, RecordFile::RestartIndex);
  cursor->readAhead();
  return cursor;
}

/// Types of records that index files have.
bool isKnown(ElementType type) {
  return type == ElementType::Integer || type == ElementType::Single || type == ElementType::Double ||
         type == ElementType::Text || type == ElementType::Logical;
}

/// Reads a complete index file, whose INTEHEAD goes to `head`. `readPart` begins at each record that opens a
/// part. A record of a type that index files do not have ends it when it has data.
bool readIndexFile(const std::string& path, const Form& form, Session& session, IndexFileHead& head,
                   bool (*opensPart)(const RecordHeader&),
                   const std::function<void(RecordCursor&)>& readPart) {
  const auto cursor = openIndexFile(path, form, session);
  if (!cursor) return false;
  while (cursor->next()) {
    if (session.cancelled()) return false;
    const RecordHeader& header = cursor->header();
    if (!isKnown(header.type) && header.count > 0) return true;
    if (header.is("INTEHEAD", ElementType::Integer)) {
      head.processINTEHEAD(cursor->integers());
    } else if (opensPart(header)) {
      cursor->seek(header.headerAt);
      readPart(*cursor);
    }
    if (session.Container) {
      session.Container->fraction(static_cast<double>(cursor->nextPosition()) /
                                  static_cast<double>(cursor->fileSize()));
    }
  }
  cursor->checkUnchanged();
  return !session.cancelled();
}

void takeItime(std::vector<std::int32_t> words, IndexFileStep& step) {
  step.iTime = std::move(words);
  if (step.iTime.size() <= 3) return;
  step.iStep = step.iTime[0];
  step.iDay = step.iTime[1];
  step.iMonth = step.iTime[2];
  step.iYear = step.iTime[3];
}

std::string gridName(RecordCursor& cursor) { return cursor.header().count > 0 ? firstText(cursor) : ""; }

void takeCleanNames(RecordCursor& cursor, IndexFilePass& pass) {
  IndexFileGrid& grid = pass.grids.back();
  grid.takeNames(cursor);
  auto names = cursor.texts();
  for (std::string& name : names) name = std::string(cleanVectorName(name));
  grid.setNames(names);
  addNewNames(grid.names(), pass.zAllNames);
}

}  // namespace

void IndexFileHead::processINTEHEAD(std::vector<std::int32_t> words) {
  const HeaderWords header(words);
  header.take(3, iUnits);
  header.take(9, Nx);
  header.take(10, Ny);
  header.take(11, Nz);
  if (header.has(12)) nActive = static_cast<std::int32_t>(statedActiveCells(header, init).active);
  header.take(15, iPhases);
  header.take(65, iDay);
  header.take(66, iMonth);
  header.take(67, iYear);
  header.take(95, iProgram);
  iHeader = std::move(words);
}

std::optional<Form> formOfIndexFile(const std::string& path) {
  std::string error;
  const auto source = FileSource::open(path, error);
  if (!source) return std::nullopt;
  constexpr std::string_view firstKeyword[] = {"INTEHEAD"};
  const auto detected = detectForm(*source, firstKeyword);
  return detected ? std::optional(detected->form) : std::nullopt;
}

void setIndexFileTypeProps(const FormFlags& flags, std::int32_t fileKindCode, const Session& session,
                           cFILETYPE& xFile) {
  xFile.setFlags(flags);
  xFile.IOMethod = session.IOMethod;
  xFile.UseBufferedInput = usesBufferedInput(fileKindCode);
}

void readIndexFileStep(RecordCursor& cursor, IndexFileStep& step) {
  bool opened = false;
  while (cursor.next()) {
    const RecordHeader& header = cursor.header();
    if (opensStep(header)) {
      if (opened) return cursor.seek(header.headerAt);  // the next step's
      opened = true;
      if (header.count > 0) cursor.read(std::span(&step.dTime, 1));
    } else if (header.is("ITIME", ElementType::Integer)) {
      takeItime(cursor.integers(), step);
    } else if (header.is("NAME", ElementType::Text)) {
      step.grids.back().takeNames(cursor);
    } else if (header.is("LGRNAME", ElementType::Text)) {
      step.grids.emplace_back().zGrid = gridName(cursor);
    } else {
      step.grids.back().take(cursor);
    }
  }
}

void readIndexFilePass(RecordCursor& cursor, IndexFilePass& pass) {
  bool named = false;   // the current grid
  bool opened = false;  // something of this pass was read
  while (cursor.next()) {
    const RecordHeader& header = cursor.header();
    const bool name = header.is("NAME", ElementType::Text);
    if ((name && named) || (opened && opensStep(header))) return cursor.seek(header.headerAt);
    opened = true;
    if (name) {
      named = true;
      takeCleanNames(cursor, pass);
    } else if (header.is("LGRNAME", ElementType::Text)) {
      const std::string zGrid = gridName(cursor);
      if (indexOfGrid(pass.grids, zGrid) > 1) return cursor.seek(header.headerAt);
      named = false;
      pass.grids.emplace_back().zGrid = zGrid;
    } else {
      pass.grids.back().take(cursor);
    }
    pass.grids.back().nArrays = static_cast<std::int32_t>(pass.grids.back().bNames.entries());
  }
}

bool readRsspec(const std::string& path, const Form& form, Session& session, IndexFileHead& head,
                const std::function<void(IndexFileStep&&)>& take) {
  return readIndexFile(path, form, session, head, opensStep, [&](RecordCursor& cursor) {
    IndexFileStep step;
    try {
      readIndexFileStep(cursor, step);
    } catch (const BadRecord&) {
      take(std::move(step));  // as far as it came
      throw;
    }
    take(std::move(step));
  });
}

bool readInspec(const std::string& path, const Form& form, Session& session, IndexFileHead& head,
                const std::function<void(IndexFilePass&&)>& take) {
  return readIndexFile(path, form, session, head, opensPass, [&](RecordCursor& cursor) {
    IndexFilePass pass;
    try {
      readIndexFilePass(cursor, pass);
    } catch (...) {  // also of a load that is cancelled
      take(std::move(pass));
      throw;
    }
    take(std::move(pass));
  });
}

}  // namespace lumbarn
