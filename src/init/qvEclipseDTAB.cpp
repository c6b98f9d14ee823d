#include "qvEclipseDTAB.h"

#include <utility>

#include <fmt/format.h>

#include "../shapes/HeaderLayout.h"
#include "../support/Guarded.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseDTAB";

/// False for a table that is not there, with outputs as they were, and for one of too many sizes.
bool give(std::optional<TableValues> from, std::vector<float>& dTable, std::vector<std::int32_t>& iDimens,
          std::int32_t& nDims) {
  if (!from) return false;
  dTable = std::move(from->values);
  iDimens = std::move(from->sizes);
  nDims = static_cast<std::int32_t>(iDimens.size());
  return iDimens.size() <= 3;
}

}  // namespace

void qvEclipseDTAB::processTABDIMS(std::span<const std::int32_t> iTABDIMS, bool& qOK) {
  qOK = setWords(iTABDIMS);
}

void qvEclipseDTAB::addDTAB(std::vector<double> dTAB, bool& qOK) {
  setValues(std::move(dTAB));
  qOK = true;
}

void qvEclipseDTAB::processTables(bool& qOK) {
  guarded(session(), qOK, className, "processTables", [&] { return build(); });
}

void qvEclipseDTAB::addTable(std::string_view zTable, std::int32_t iStart, std::string_view zParent,
                             std::span<const std::int32_t> iDimens, bool& qOK) {
  guarded(session(), qOK, className, "addTable", [&] { return add(zTable, iStart, zParent, iDimens); });
}

void qvEclipseDTAB::GetTABDIMS(std::vector<std::int32_t>& iTABDIMS) const {
  iTABDIMS.assign(words().begin(), words().end());
}

void qvEclipseDTAB::getTableNames(std::vector<std::string>& zTables, std::int32_t& nTables) const {
  zTables = names();
  nTables = this->nTables();
}

void qvEclipseDTAB::getTableProperties(std::string_view zTable, std::vector<std::int32_t>& iDimens,
                                       std::int32_t& nDims, bool& qOK) const {
  const auto* table = find(zTable);
  qOK = table != nullptr;
  if (qOK) iDimens = table->iDimens;
  nDims = qOK ? table->nDims : 0;
}

void qvEclipseDTAB::getAllTableProperties(std::vector<std::string>& zTables,
                                          std::vector<std::string>& zParents,
                                          std::vector<std::int32_t>& nEach, bool& qOK) const {
  guarded(session(), qOK, className, "getAllTableProperties", [&] {
    zTables = names();
    zParents.clear();
    nEach.clear();
    for (const auto& table : tables()) {
      zParents.push_back(table.zParent);
      nEach.push_back(table.count());
    }
  });
}

void qvEclipseDTAB::getTable(std::string_view zTable, std::int32_t iTable, std::vector<float>& dTable,
                             std::vector<std::int32_t>& iDimens, std::int32_t& nDims, bool& qOK,
                             [[maybe_unused]] bool qDefault) const {
  guarded(session(), qOK, className, "getTable",
          [&] { return give(storedTable(zTable, iTable), dTable, iDimens, nDims); });
}

void qvEclipseDTAB::getTable2d(std::string_view zTable, std::int32_t iTable, std::vector<float>& dTable,
                               std::vector<std::int32_t>& iDimens, std::int32_t& nDims, bool& qOK,
                               bool qDefault) const {
  guarded(session(), qOK, className, "getTable2d",
          [&] { return give(plainTable(zTable, iTable, !qDefault), dTable, iDimens, nDims); });
}

void qvEclipseDTAB::Produce2DTable(std::string_view zTable, std::int32_t iTable, std::vector<float>& dTable,
                                   std::vector<std::int32_t>& iDimens, std::int32_t& nDims, bool& qOK) const {
  guarded(session(), qOK, className, "Produce2DTable", [&] {
    return nDims != 3 || give(withOuterColumn(zTable, iTable, {dTable, iDimens}), dTable, iDimens, nDims);
  });
}

bool qvEclipseDTAB::addHeaders(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders) const {
  const std::string name = upper(trim(zTable));
  const auto columns = tableColumns(name);
  const std::size_t before = bHeaders.entries();
  bHeaders.resize(before + columns.size());
  for (std::size_t i = 1; i <= columns.size(); ++i) {
    const auto& column = columns[i - 1];
    const auto label = !column.raw.empty()    ? std::string(column.raw)
                       : !column.name.empty() ? std::string(column.name)
                                              : fmt::format("COLUMN{}", i);
    setAttribute(attributeDataKind, bHeaders, before + i, "INIT");
    setAttribute(attributeMember, bHeaders, before + i, name);
    setAttribute(attributeVariable, bHeaders, before + i, label);
    // The units known here are those of the physical value.
    if (column.raw.empty())
      setAttribute(attributeUnits, bHeaders, before + i, tableUnit(column.quantity, iUnits, program()));
  }
  return !columns.empty();
}

void qvEclipseDTAB::getTableHeaders(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders,
                                    bool& qOK) const {
  guarded(session(), qOK, className, "getTableHeaders", [&] {
    bHeaders = ByteTable(headerWidth, 0);
    return find(zTable) && addHeaders(zTable, iUnits, bHeaders);
  });
}

void qvEclipseDTAB::Produce2DHeaders(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders,
                                     bool& qOK) const {
  guarded(session(), qOK, className, "Produce2DHeaders", [&] {
    const auto related = relatedTable(upper(trim(zTable)));
    bHeaders = ByteTable(headerWidth, 0);
    if (!related.empty() && find(related)) addHeaders(related, iUnits, bHeaders);
    return find(zTable) && addHeaders(zTable, iUnits, bHeaders);
  });
}

void qvEclipseDTAB::getTableHeaders2D(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders,
                                      bool& qOK) const {
  Produce2DHeaders(zTable, iUnits, bHeaders, qOK);
}

void qvEclipseDTAB::GetRelatedTables(std::string_view zTable, std::vector<std::string>& zList,
                                     std::int32_t& nList, bool& qOK) const {
  const auto related = relatedTable(upper(trim(zTable)));
  zList.clear();
  if (!related.empty()) zList.emplace_back(related);
  nList = static_cast<std::int32_t>(zList.size());
  qOK = true;
}

void qvEclipseDTAB::InvertColumns(std::int32_t iFirst, std::int32_t iSecond, std::int32_t nRows,
                                  std::vector<float>& sTable, std::span<const std::int32_t> iDimens,
                                  bool& qOK) const {
  qOK = invertColumns(iFirst, iSecond, nRows, sTable, iDimens, session().NullValue);
}

PhysicalTable qvEclipseDTAB::physicalTable(std::string_view zTable, std::int32_t iTable, std::int32_t iUnits,
                                           bool& qOK) const {
  PhysicalTable result;
  guarded(session(), qOK, className, "physicalTable", [&] {
    auto table = physicalTable(zTable, iTable, iUnits);
    if (table) result = std::move(*table);
    return table.has_value();
  });
  return result;
}

}  // namespace lumbarn
