#include "SourceData.h"

#include <initializer_list>

#include "../support/Fault.h"

namespace lumbarn {

namespace {

using Slots = std::initializer_list<std::size_t>;

void fill(VariantTable& table, Slots slots, const Variant& value) {
  for (const auto slot : slots) table(slot) = value;
}

Variant text(const char* words) { return std::string(words); }
Variant i16(std::int16_t number) { return number; }
Variant i32(std::int32_t number) { return number; }

}  // namespace

Variant& VariantTable::operator()(std::size_t iSlot) {
  if (iSlot < 1 || iSlot > slots_.size()) throw Fault(FaultNumber::Subscript);
  return slots_[iSlot - 1];
}

const Variant& VariantTable::operator()(std::size_t iSlot) const {
  if (iSlot < 1 || iSlot > slots_.size()) throw Fault(FaultNumber::Subscript);
  return slots_[iSlot - 1];
}

SourceData defaultSourceData() {
  SourceData vSourceData(66);
  fill(vSourceData, {1, 2, 3, 4, 5, 6, 14, 15, 18, 20, 21, 24, 28, 29, 30, 52, 53}, text(""));
  fill(vSourceData, {19}, text("Data"));
  fill(vSourceData, {7, 8, 9, 10, 16, 25, 26, 44, 45, 46, 47, 48, 49, 50, 51}, i16(0));
  fill(vSourceData, {17, 42}, i16(1));
  fill(vSourceData, {13, 22, 27, 31, 33, 36, 38, 39, 41, 58, 59, 60, 62}, i32(0));
  fill(vSourceData, {11, 12, 32, 43, 56, 57, 61}, i32(-1));
  fill(vSourceData, {34, 40}, i32(-999));  // readers put a double there, the default is none
  fill(vSourceData, {35}, i32(1));
  fill(vSourceData, {23}, i32(3));
  return vSourceData;
}

VariantTable defaultVTableData() {
  VariantTable vTableData(11);
  fill(vTableData, {2, 3, 5, 6}, text(""));
  fill(vTableData, {4, 7, 8}, i16(0));
  fill(vTableData, {11}, i32(0));
  return vTableData;
}

void InitSourceData(SourceData& vSourceData, bool& qOK) {
  qOK = false;
  vSourceData = defaultSourceData();
  qOK = true;
}

void InitVTableData(VariantTable& vTableData, bool& qOK) {
  qOK = false;
  vTableData = defaultVTableData();
  qOK = true;
}

}  // namespace lumbarn
