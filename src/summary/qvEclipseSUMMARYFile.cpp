#include "qvEclipseSUMMARYFile.h"

#include <algorithm>
#include <utility>

#include "../support/Guarded.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSUMMARYFile";

}  // namespace

void qvEclipseSUMMARYFile::setMultList(std::int32_t n, const std::vector<std::string>& files, bool& qOK) {
  guarded(*session_, qOK, className, "setMultList", [&] {
    const auto count = std::min(static_cast<std::size_t>(std::max(n, 0)), files.size());
    nMult = static_cast<std::int32_t>(count);
    zMult.assign(files.begin(), files.begin() + static_cast<std::ptrdiff_t>(count));
  });
}

void qvEclipseSUMMARYFile::ReadSUMMARYData(bool& qOK) {
  guarded(*session_, qOK, className, "ReadSUMMARYData", [&] { return readChain(); });
}

void qvEclipseSUMMARYFile::GetSUMMARYData(XYData& xyData, ByteTable& bHeaders, bool& qOK) {
  guarded(*session_, qOK, className, "GetSUMMARYData", [&] { return fetch(xyData, bHeaders); });
}

void qvEclipseSUMMARYFile::GetStoreSUMMARYData(XYData& xyData, AttributeStores& xStore, ByteTable& bPointers,
                                               bool& qOK) {
  guarded(*session_, qOK, className, "GetStoreSUMMARYData", [&] { return fetch(xyData, xStore, bPointers); });
}

void qvEclipseSUMMARYFile::getFileInfo(SourceData& vSourceData, bool& qOK) const {
  guarded(*session_, qOK, className, "getFileInfo", [&] { vSourceData = fileInfo(); });
}

void qvEclipseSUMMARYFile::getHorizontalData(bool qInflow, bool qConnect, bool qMiniSteps, bool& qOK) {
  guarded(*session_, qOK, className, "getHorizontalData",
          [&] { return buildProfiles(qInflow, qConnect, qMiniSteps); });
}

void qvEclipseSUMMARYFile::getHorizontalData(std::int32_t iStep, bool qInflow, XYData& xyData,
                                             ByteTable& bHeaders, std::string& zDate, bool& qOK) {
  guarded(*session_, qOK, className, "getHorizontalData", [&] {
    xyData = {};
    bHeaders = {};
    auto profiles = profilesOf(iStep, qInflow);
    xyData = std::move(profiles.sData);
    bHeaders = std::move(profiles.bHeaders);
    const auto date = dateOf(horizontal_.iHorizSteps.at(static_cast<std::size_t>(iStep - 1)));
    zDate = date.value_or("");
    return date.has_value();
  });
}

void qvEclipseSUMMARYFile::GetDateStamp(std::int32_t iRow, std::string& zDate, bool& qOK) {
  guarded(*session_, qOK, className, "GetDateStamp", [&] {
    const auto date = dateOf(iRow);
    zDate = date.value_or("");
    return date.has_value();
  });
}

std::int32_t qvEclipseSUMMARYFile::columns() const {
  return xSUMMARY.empty() ? static_cast<std::int32_t>(vectors_.size()) : xSUMMARY.front()->nSelected;
}

void qvEclipseSUMMARYFile::SetKeys() { qMask.assign(qMask.size(), true); }

void qvEclipseSUMMARYFile::SetSUMMARYKeys(std::string_view zMnemonics) {
  SetSUMMARYKeysFromOnly(split(zMnemonics, ','));
}

void qvEclipseSUMMARYFile::SetSUMMARYKeysFromOnly(const std::vector<std::string>& zItems) {
  const auto& list = session_->part<SelectionState>().zOnly;
  qMask.assign(list.size(), false);
  for (std::size_t i = 0; i < list.size(); ++i) {
    qMask[i] =
        std::ranges::any_of(zItems, [&](const auto& item) { return equalNoCase(trim(item), trim(list[i])); });
  }
}

void qvEclipseSUMMARYFile::SetSUMMARYKeysFrombOnly() {
  std::vector<std::string> names;
  for (std::size_t i = 1; i <= bOnly.entries(); ++i) names.emplace_back(bOnly.get(i, 1, onlyNameWidth));
  SetSUMMARYKeysFromOnly(names);
}

}  // namespace lumbarn
