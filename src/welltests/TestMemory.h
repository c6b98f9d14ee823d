#pragma once

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <utility>

#include "../support/System.h"

namespace lumbarn {

/// Memory for the tests of one file. A file can hold a hundred thousand of them with a few kilobytes each:
/// they take their room from large pieces, in the order in which they are read, and all of it goes back at
/// once with the last of them. What a test gives up before is not used again.
class TestMemory {
 public:
  std::pmr::memory_resource* resource() { return &room_; }

 private:
  class Pieces final : public std::pmr::memory_resource {
    void* do_allocate(std::size_t bytes, std::size_t) override { return allocateLarge(bytes); }
    void do_deallocate(void* memory, std::size_t bytes, std::size_t) override { freeLarge(memory, bytes); }
    bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }
  };
  static constexpr std::size_t firstPiece = std::size_t{16}
                                            << 10;  // each piece is larger than the one before

  Pieces pieces_;
  std::pmr::monotonic_buffer_resource room_{firstPiece, &pieces_};
};

/// Allocator for std::allocate_shared; what is made with it keeps the memory alive.
template <class T>
class FromTestMemory {
 public:
  using value_type = T;
  explicit FromTestMemory(std::shared_ptr<TestMemory> memory) : memory_(std::move(memory)) {}
  template <class Other>
  FromTestMemory(const FromTestMemory<Other>& other) : memory_(other.memory()) {}

  T* allocate(std::size_t n) {
    return static_cast<T*>(memory_->resource()->allocate(n * sizeof(T), alignof(T)));
  }
  void deallocate(T* at, std::size_t n) { memory_->resource()->deallocate(at, n * sizeof(T), alignof(T)); }
  const std::shared_ptr<TestMemory>& memory() const { return memory_; }
  template <class Other>
  bool operator==(const FromTestMemory<Other>& other) const {
    return memory_ == other.memory();
  }

 private:
  std::shared_ptr<TestMemory> memory_;
};

}  // namespace lumbarn
