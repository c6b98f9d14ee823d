#include "IndexFile.h"

#include "../support/Guarded.h"
#include "IndexWriter.h"

namespace lumbarn {

void WriteEclipseRsspecFile(const RestartIndex& index, const std::string& zFile, bool& qOK,
                            Session& session) {
  guarded(session, qOK, "qvEclipseSOLUTION", "WriteEclipseRsspecFile",
          [&] { writeIndexFile(index, zFile, session); });
}

void WriteEclipseInspecFile(const RestartIndex& index, const std::string& zFile, bool& qOK,
                            Session& session) {
  guarded(session, qOK, "qvEclipseINIT", "WriteEclipseInspecFile",
          [&] { writeIndexFile(index, zFile, session); });
}

}  // namespace lumbarn
