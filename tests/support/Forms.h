#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "record/RecordCursor.h"
#include "record/RecordWriter.h"

namespace lumbarn::test {

/// An on-disk form, with a name that goes into the name of a test.
struct NamedForm {
  const char* name;
  Form form;
};
constexpr bool littleEndianMachine = std::endian::native == std::endian::little;
inline constexpr Form formatted{Framing::Formatted, false};
inline constexpr Form bigEndian{Framing::FourByteMarks, littleEndianMachine};  // as simulators write
/// Every on-disk form that a record file can have.
inline constexpr std::array<NamedForm, 4> everyForm{
    {{"Formatted", formatted},
     {"BigEndian", bigEndian},
     {"LittleEndian", {Framing::FourByteMarks, !littleEndianMachine}},
     {"OneByteMarks", {Framing::OneByteMarks, false}}}};

inline std::string formName(const ::testing::TestParamInfo<NamedForm>& info) { return info.param.name; }

/// A test of one form.
class OfForm : public ::testing::TestWithParam<NamedForm> {
 protected:
  const Form form_ = GetParam().form;
};

inline RecordCursor cursorOver(std::vector<std::byte> bytes, const Form& form) {
  return {std::make_shared<MemorySource>(std::move(bytes)), form, "memory"};
}

inline std::vector<std::byte> bytesOf(std::string_view text) {
  const auto* begin = reinterpret_cast<const std::byte*>(text.data());
  return {begin, begin + text.size()};
}

}  // namespace lumbarn::test
