#include "ByteTable.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "../support/Fault.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

std::size_t tableSize(std::size_t width, std::size_t entries) {
  if (width != 0 && entries > std::numeric_limits<std::size_t>::max() / width) {
    throw Fault(FaultNumber::OutOfMemory);
  }
  return width * entries;
}

void check(bool inside) {
  if (!inside) throw Fault(FaultNumber::Subscript);
}

}  // namespace

std::string_view fieldText(std::string_view bytes) {
  const auto text = cutAtNul(bytes);
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

ByteTable::ByteTable(std::size_t width, std::size_t entries, char fill)
    : width_(width), entries_(entries), bytes_(tableSize(width, entries), fill) {}

std::span<char> ByteTable::entry(std::size_t iEntry) {
  check(iEntry >= 1 && iEntry <= entries_);
  return {bytes_.data() + (iEntry - 1) * width_, width_};
}

std::span<const char> ByteTable::entry(std::size_t iEntry) const {
  check(iEntry >= 1 && iEntry <= entries_);
  return {bytes_.data() + (iEntry - 1) * width_, width_};
}

char& ByteTable::operator()(std::size_t iByte, std::size_t iEntry) {
  check(iByte >= 1 && iByte <= width_);
  return entry(iEntry)[iByte - 1];
}

char ByteTable::operator()(std::size_t iByte, std::size_t iEntry) const {
  check(iByte >= 1 && iByte <= width_);
  return entry(iEntry)[iByte - 1];
}

void ByteTable::put(std::size_t iEntry, std::size_t firstByte, std::size_t fieldWidth,
                    std::string_view text) {
  const auto bytes = entry(iEntry);
  check(firstByte >= 1 && firstByte <= width_ + 1 && fieldWidth <= width_ + 1 - firstByte);
  if (text.empty()) return;
  std::memcpy(bytes.data() + firstByte - 1, text.data(), std::min(text.size(), fieldWidth));
}

std::string_view ByteTable::get(std::size_t iEntry, std::size_t firstByte, std::size_t fieldWidth) const {
  const auto bytes = entry(iEntry);
  check(firstByte >= 1 && firstByte <= width_ + 1 && fieldWidth <= width_ + 1 - firstByte);
  return fieldText({bytes.data() + firstByte - 1, fieldWidth});
}

void ByteTable::resize(std::size_t entries, char fill) {
  bytes_.resize(tableSize(width_, entries), fill);
  entries_ = entries;
}

}  // namespace lumbarn
