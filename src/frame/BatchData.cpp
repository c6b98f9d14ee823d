#include "BatchData.h"

#include <cstring>
#include <new>
#include <utility>

namespace lumbarn {

Block::Block(std::size_t bytes) : size_(bytes) {
  if (bytes == 0) return;
  data_ = static_cast<std::byte*>(::operator new (bytes, std::align_val_t{alignment}));
  std::memset(data_, 0, bytes);
}
Block::Block(Block&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
Block& Block::operator=(Block&& other) noexcept {
  std::swap(data_, other.data_);
  std::swap(size_, other.size_);
  return *this;
}
Block::~Block() { ::operator delete (data_, std::align_val_t{alignment}); }

std::size_t widthOf(const Field& field) {
  switch (field.type) {
    case Type::Int32:
    case Type::Float32:
    case Type::Dictionary:
      return 4;
    case Type::Int64:
    case Type::Float64:
    case Type::Timestamp:
      return 8;
    case Type::FixedList:
      return 4 * static_cast<std::size_t>(field.listSize);
    case Type::Bool:
    case Type::Utf8:
      break;
  }
  return 0;
}

std::vector<std::pair<std::string, std::string>> allMetadata(const Field& field) {
  auto pairs = field.metadata;
  if (!field.unit.empty()) pairs.emplace_back("unit", field.unit);
  if (!field.description.empty()) pairs.emplace_back("description", field.description);
  return pairs;
}

}  // namespace lumbarn
