#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "../support/Export.h"

namespace lumbarn {

/// One slot of source information. Integers of 16 and 32 bits are told apart, as hosts do.
using Variant = std::variant<std::monostate, std::int16_t, std::int32_t, bool, double, std::string>;

/// A table of variants that counts from 1: `vSourceData` (66 slots) and the smaller table for VFP data (11).
class LUMBARN_API VariantTable {
 public:
  VariantTable() = default;
  explicit VariantTable(std::size_t slots) : slots_(slots) {}
  std::size_t size() const { return slots_.size(); }
  /// Throws Fault 9 outside.
  Variant& operator()(std::size_t iSlot);
  const Variant& operator()(std::size_t iSlot) const;

 private:
  std::vector<Variant> slots_;
};
using SourceData = VariantTable;

/// 66 slots with the default of each.
LUMBARN_API SourceData defaultSourceData();
/// 11 slots for VFP data.
LUMBARN_API VariantTable defaultVTableData();
/// Calling forms of the same.
LUMBARN_API void InitSourceData(SourceData& vSourceData, bool& qOK);
LUMBARN_API void InitVTableData(VariantTable& vTableData, bool& qOK);

}  // namespace lumbarn
