#include "WellRecords.h"

#include <iterator>
#include <span>
#include <utility>

#include "MarkerRows.h"

namespace lumbarn {
namespace {

using NumberName = std::pair<std::int32_t, std::string_view>;

std::string textOf(std::int32_t number, std::span<const NumberName> names) {
  for (const auto& [known, name] : names) {
    if (known == number) return std::string(name);
  }
  return std::to_string(number);
}

ConnectionNumbers numbersOf(const RESTARTGRID& grid, const ConnectionRows& rows, std::size_t k) {
  const auto value = [&](std::size_t iColumn) { return rows.value(grid.sCONN, k, iColumn); };
  return {.factor = value(1),
          .depth = value(2),
          .diameter = value(3),
          .kh = value(4),
          .lengthEnd = value(11),
          .lengthStart = value(12),
          .sWord5 = value(5),
          .sWord6 = value(6),
          .sWord7 = value(7),
          .sWord13 = value(8),
          .sWord14 = value(9),
          .sWord15 = value(10)};
}

ConnectionRecord connectionOf(const RESTARTGRID& grid, const ConnectionRows& rows, std::size_t k) {
  const auto value = [&](std::size_t iColumn) { return rows.value(grid.iCONN, k, iColumn); };
  ConnectionRecord connection{.i = value(1),
                              .j = value(2),
                              .k = value(3),
                              .iStatus = value(4),
                              .iNumber = value(9),
                              .iDirection = value(6),
                              .iWord5 = value(5),
                              .iWord7 = value(7),
                              .iWord10 = value(8),
                              .numbers = {}};
  if (grid.qSCON) connection.numbers = numbersOf(grid, rows, k);
  return connection;
}

WellRates ratesOf(const RESTARTGRID& grid, std::size_t iWell) {
  const auto value = [&](std::size_t iColumn) { return grid.dWELL(iWell, iColumn); };
  return {.oil = value(1),
          .water = value(2),
          .gas = value(3),
          .liquid = value(4),
          .reservoir = value(5),
          .bhp = value(7),
          .waterCut = value(9)};
}

std::string groupName(const RESTARTGRID& grid, std::int32_t iGroup) {
  const bool known = grid.qZGRP && iGroup >= 1 && std::cmp_less_equal(iGroup, grid.zGROUP.rows());
  return known ? grid.zGROUP(static_cast<std::size_t>(iGroup), 1) : std::string();
}

WellRecord wellOf(const RESTARTGRID& grid, std::size_t iWell) {
  const auto value = [&](std::size_t iColumn) { return grid.iWELL(iWell, iColumn); };
  WellRecord well;
  well.name = wellName(grid, iWell);
  well.iType = value(3);
  well.iPhase = value(14);
  well.iStatus = value(4);
  well.iControl = value(12);
  well.iHead = value(1);
  well.jHead = value(2);
  well.iPVTTable = value(9);
  well.iGroup = value(11);
  well.group = groupName(grid, well.iGroup);
  well.nConnections = value(5);
  well.iWord8 = value(8);
  well.iWord12 = value(7);
  well.iWord23 = value(6);
  well.iWord25 = value(15);
  if (grid.qXWEL) well.rates = ratesOf(grid, iWell);
  const ConnectionRows rows(grid, iWell);
  for (std::size_t k = 1; k <= rows.count(); ++k) well.connections.push_back(connectionOf(grid, rows, k));
  return well;
}

}  // namespace

WellType wellTypeOf(std::int32_t iType) {
  return iType >= 1 && iType <= 4 ? static_cast<WellType>(iType) : WellType::Unknown;
}

std::string_view nameOf(WellType type) {
  constexpr std::string_view names[] = {"unknown", "producer", "oil injector", "water injector",
                                        "gas injector"};
  return names[static_cast<std::size_t>(type)];
}

std::vector<WellRecord> wellRecords(const RESTARTGRID& grid) {
  std::vector<WellRecord> wells;
  if (!grid.qIWEL) return wells;
  for (std::size_t iWell = 1; iWell <= grid.iWELL.rows(); ++iWell) wells.push_back(wellOf(grid, iWell));
  return wells;
}

std::string wellStatusText(std::int32_t iStatus) {
  constexpr NumberName names[] = {{1, "open"}, {-1000, "shut"}};
  return textOf(iStatus, names);
}

std::string connectionStatusText(std::int32_t iStatus) {
  constexpr NumberName names[] = {{1, "open"}, {0, "shut"}};
  return textOf(iStatus, names);
}

std::string phaseText(std::int32_t iPhase) {
  constexpr NumberName names[] = {{1, "oil"}, {2, "water"}, {3, "gas"}, {4, "liquid"}};
  return textOf(iPhase, names);
}

std::string controlText(std::int32_t iControl) {
  constexpr NumberName names[] = {{1, "oil rate"},    {2, "water rate"},     {3, "gas rate"},
                                  {4, "liquid rate"}, {5, "reservoir rate"}, {6, "THP"},
                                  {7, "BHP"},         {-1, "group"},         {-1000, "shut"}};
  return textOf(iControl, names);
}

std::string directionText(std::int32_t iDirection) {
  constexpr NumberName names[] = {{0, ""}, {1, "X"}, {2, "Y"}, {3, "Z"}};
  return textOf(iDirection, names);
}

}  // namespace lumbarn
