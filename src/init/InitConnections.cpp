// Connection arrays of an INIT file, by kind.

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../record/RecordCursor.h"
#include "../support/Diagnosis.h"
#include "../support/Text.h"
#include "Connections.h"
#include "InitFile.h"

namespace lumbarn {

namespace {

bool isKind(std::int32_t iType) { return iType >= 1 && iType <= 3; }

}  // namespace

void InitFile::AddINITNNCArray(const RecordHeader& header, RecordCursor& cursor) {
  auto& records = current().xNNC;
  const auto iType = whichNNCType(upper(header.keyword));
  if (!isKind(iType)) return;
  AddNNCArray(header, cursor, records[static_cast<std::size_t>(iType) - 1]);
  if (iType == 1) records[0].zNNCType = "NNC";
  if (iType == 2) records[1].zNNCType = "NNCGL";
  // Deliberate: the third kind writes its label over that of the first, and its own stays empty.
  if (iType == 3) records[0].zNNCType = "NNCLL";
}

/// Values are taken only when data are loaded; otherwise `GetNNCData` reads them.
void InitFile::AddNNCArray(const RecordHeader& header, RecordCursor& cursor, tNNC& xNNC) {
  if (header.count <= 0) return;
  if (xNNC.nArrays > 0 && header.count != xNNC.nItems) {
    Diagnosis diagnosis{.message = Message::InitConnections,
                        .path = FileName,
                        .keyword = header.keyword,
                        .occurrence = cursor.occurrence(),
                        .offset = header.headerAt};
    diagnosis.expected = fmt::format("{}", xNNC.nItems);
    diagnosis.found = fmt::format("{}", header.count);
    diagnosis.action = "dropped the array";
    session_->diagnose(std::move(diagnosis));
    return;
  }
  if (LoadData) {
    const auto values = cursor.singles();
    xNNC.sData.insert(xNNC.sData.end(), values.begin(), values.end());
  }
  xNNC.nItems = static_cast<std::int32_t>(header.count);
  xNNC.zArrays.push_back(upper(header.keyword));
  xNNC.headers.push_back(header);
  xNNC.iKinds.push_back(static_cast<std::int32_t>(ArrayKind::Single));
  ++xNNC.nArrays;
}

const tNNC* InitFile::connections(std::int32_t iType) const {
  if (!isKind(iType) || iGrid < 1 || iGrid > nGrids()) return nullptr;
  return &grid().xNNC[static_cast<std::size_t>(iType) - 1];
}

std::optional<XYData> InitFile::connectionValues(std::int32_t iType) {
  const tNNC* from = connections(iType);
  if (!from || from->nItems < 1) return std::nullopt;
  XYData values(static_cast<std::size_t>(from->nItems), from->headers.size(), *session_);
  if (LoadData) {
    std::ranges::copy(from->sData, values.values().begin());
    return values;
  }
  const auto cursor = open();
  if (!cursor) return std::nullopt;
  for (std::size_t i = 0; i < from->headers.size(); ++i) {
    cursor->setCurrent(from->headers[i]);
    cursor->read(values.column(i + 1));
  }
  return values;
}

std::optional<std::vector<Connection>> pairConnections(std::span<const std::int32_t> NNC1,
                                                       std::span<const std::int32_t> NNC2,
                                                       const XYData& values) {
  if (NNC1.size() != NNC2.size() || NNC1.size() != values.rows()) return std::nullopt;
  std::vector<Connection> pairs;
  pairs.reserve(NNC1.size());
  for (std::size_t i = 0; i < NNC1.size(); ++i) {
    auto& pair = pairs.emplace_back(Connection{NNC1[i], NNC2[i], {}});
    for (std::size_t c = 1; c <= values.columns(); ++c) pair.values.push_back(values(i + 1, c));
  }
  return pairs;
}

}  // namespace lumbarn
