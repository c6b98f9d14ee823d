#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "record/Form.h"
#include "record/RecordCursor.h"
#include "record/RecordWriter.h"

namespace lumbarn::testing {

constexpr bool littleEndianMachine = std::endian::native == std::endian::little;

/// Every on-disk form that a record file can have.
inline constexpr std::array<Form, 4> allForms{{
    {Framing::Formatted, false},
    {Framing::FourByteMarks, littleEndianMachine},   // big-endian, as simulators write
    {Framing::FourByteMarks, !littleEndianMachine},  // little-endian
    {Framing::OneByteMarks, false},
}};

inline std::string formName(const ::testing::TestParamInfo<Form>& info) {
  switch (info.param.framing) {
    case Framing::Formatted:
      return "Formatted";
    case Framing::FourByteMarks:
      return info.param.byteSwap ? "BigEndian" : "LittleEndian";
    case Framing::OneByteMarks:
      break;
  }
  return "OneByteMarks";
}

inline RecordCursor cursorOver(std::vector<std::byte> bytes, const Form& form) {
  return {std::make_shared<MemorySource>(std::move(bytes)), form, "memory"};
}

inline std::vector<std::byte> bytesOf(std::string_view text) {
  const auto* begin = reinterpret_cast<const std::byte*>(text.data());
  return {begin, begin + text.size()};
}

}  // namespace lumbarn::testing
