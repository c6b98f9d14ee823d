#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "../record/ByteSource.h"
#include "../record/RecordCursor.h"
#include "../record/cFILETYPE.h"
#include "../support/Session.h"
#include "RestartIndexHeads.h"
#include "qvEclipseRSSPEC.h"

namespace lumbarn {

/// What the readers of both kinds of index file share. `Reader` has the name and the form flags.

/// Probes for INTEHEAD; sets name and form when it is there.
template <class Reader>
bool checkIndexFile(std::string_view zFile, Reader& reader) {
  const std::string path(zFile);
  std::string error;
  const auto source = FileSource::open(path, error);
  if (!source) return false;
  constexpr std::string_view firstKeyword[] = {"INTEHEAD"};
  const auto detected = detectForm(*source, firstKeyword);
  if (!detected) return false;
  reader.FileName = path;
  reader.setForm(detected->form);
  reader.FORTRAN = true;
  return true;
}

template <class Reader>
void setIndexFileTypeProps(const Reader& reader, std::int32_t kindCode, const Session& session,
                           cFILETYPE& xFile) {
  xFile.setFlags(reader);
  xFile.IOMethod = session.IOMethod;
  xFile.UseBufferedInput = usesBufferedInput(kindCode);
}

/// Null, with a diagnosis, when the file cannot be opened.
std::unique_ptr<RecordCursor> openIndexFile(const std::string& path, const cFILETYPE& xFile,
                                            Session& session);

/// The record loop of both: INTEHEAD goes to `head`, any other header goes to `reads`, which may read on from
/// there; one of a type that index files do not have ends the loop when it has data. False when the load was
/// cancelled. Throws BadRecord.
bool readIndexFile(RecordCursor& cursor, Session& session, IndexFileHead& head,
                   const std::function<void(const RecordHeader&)>& reads);

}  // namespace lumbarn
