// Connection arrays of an INIT file, by kind.

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../record/RecordCursor.h"
#include "../shapes/HeaderLayout.h"
#include "../support/Diagnosis.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "Connections.h"
#include "qvEclipseINIT.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseINIT";

bool isKind(std::int32_t iType) { return iType >= 1 && iType <= 3; }

}  // namespace

void qvEclipseINIT::AddINITNNCArray(const RecordHeader& header, RecordCursor& cursor) {
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
void qvEclipseINIT::AddNNCArray(const RecordHeader& header, RecordCursor& cursor, tNNC& xNNC) {
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

std::int32_t qvEclipseINIT::getNUMNNC(std::int32_t iType) const {
  return isKind(iType) && iGrid <= nGrids() ? grid().xNNC[static_cast<std::size_t>(iType) - 1].nItems : 0;
}

std::int32_t qvEclipseINIT::getNNCTypes(std::int32_t iType) const {
  return isKind(iType) && iGrid <= nGrids() ? grid().xNNC[static_cast<std::size_t>(iType) - 1].nArrays : 0;
}

void qvEclipseINIT::GetNNCData(std::int32_t iType, XYData& xyData, bool& qOK) {
  guarded(*session_, qOK, className, "GetNNCData", [&] {
    if (getNUMNNC(iType) < 1) return false;
    const auto& from = current().xNNC[static_cast<std::size_t>(iType) - 1];
    XYData values(static_cast<std::size_t>(from.nItems), from.headers.size(), *session_);
    if (LoadData) {
      std::ranges::copy(from.sData, values.values().begin());
    } else {
      const auto cursor = open();
      if (!cursor) return false;
      for (std::size_t i = 0; i < from.headers.size(); ++i) {
        cursor->setCurrent(from.headers[i]);
        cursor->read(values.column(i + 1));
      }
    }
    xyData = std::move(values);
    return true;
  });
}

void qvEclipseINIT::getNNCHeaders(std::int32_t iType, ByteTable& bHeaders, bool& qOK) const {
  guarded(*session_, qOK, className, "getNNCHeaders", [&] {
    if (!isKind(iType)) return false;
    const auto& from = grid().xNNC[static_cast<std::size_t>(iType) - 1];
    ByteTable headers(headerWidth, from.zArrays.size());
    for (std::size_t i = 1; i <= from.zArrays.size(); ++i) {
      setAttribute(attributeDataKind, headers, i, "INIT");
      setAttribute(attributeVariable, headers, i, from.zArrays[i - 1]);
      setAttribute(attributeVerbose, headers, i, from.zArrays[i - 1]);
      setAttribute(attributeMember, headers, i, from.zNNCType);
      if (nGrids() > 1) setAttribute(attributeLGRName, headers, i, grid().GridName);
    }
    bHeaders = std::move(headers);
    return true;
  });
}

std::vector<Connection> pairConnections(std::span<const std::int32_t> NNC1,
                                        std::span<const std::int32_t> NNC2, const XYData& values, bool& qOK) {
  std::vector<Connection> pairs;
  qOK = NNC1.size() == NNC2.size() && NNC1.size() == values.rows();
  if (!qOK) return pairs;
  pairs.reserve(NNC1.size());
  for (std::size_t i = 0; i < NNC1.size(); ++i) {
    auto& pair = pairs.emplace_back(Connection{NNC1[i], NNC2[i], {}});
    for (std::size_t c = 1; c <= values.columns(); ++c) pair.values.push_back(values(i + 1, c));
  }
  return pairs;
}

}  // namespace lumbarn
