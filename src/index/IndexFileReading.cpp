#include "IndexFileReading.h"

namespace lumbarn {

std::unique_ptr<RecordCursor> openIndexFile(const std::string& path, const cFILETYPE& xFile,
                                            Session& session) {
  std::string error;
  std::shared_ptr<const ByteSource> source = FileSource::open(path, error);
  if (!source) {
    session.diagnose(
        {.message = Message::FileOpen, .path = path, .problem = error, .action = "read nothing of it"});
    return nullptr;
  }
  auto cursor = std::make_unique<RecordCursor>(std::move(source), xFile.form(), path);
  cursor->attach(session, RecordFile::RestartIndex);
  cursor->readAhead();
  return cursor;
}

bool readIndexFile(RecordCursor& cursor, Session& session, IndexFileHead& head,
                   const std::function<void(const RecordHeader&)>& reads) {
  while (cursor.next()) {
    if (session.cancelled()) return false;
    const RecordHeader& header = cursor.header();
    const bool known = header.type == ElementType::Integer || header.type == ElementType::Single ||
                       header.type == ElementType::Double || header.type == ElementType::Text ||
                       header.type == ElementType::Logical;
    if (!known && header.count > 0) return true;
    if (header.is("INTEHEAD", ElementType::Integer)) {
      head.processINTEHEAD(cursor.integers());
    } else {
      reads(header);
    }
    if (session.Container) {
      session.Container->fraction(static_cast<double>(cursor.nextPosition()) /
                                  static_cast<double>(cursor.fileSize()));
    }
  }
  cursor.checkUnchanged();
  return !session.cancelled();
}

}  // namespace lumbarn
