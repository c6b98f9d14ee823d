#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>
#include <vector>

#include "record/Form.h"
#include "support/Diagnosis.h"

namespace lumbarn::fuzz {

/// Stops the process with a message when a promise is broken; the fuzzer keeps the input.
void check(bool promise, std::string_view what);

inline std::vector<std::byte> bytesOf(std::span<const std::uint8_t> input) {
  const auto bytes = std::as_bytes(input);
  return {bytes.begin(), bytes.end()};
}

/// Where a process may keep its input as a file or a folder. Always of the same length, as the lengths of
/// texts steer the fuzzer too.
std::filesystem::path temporaryPath(std::string_view ending = "");

/// Walks all records of a file and reads each in every way there is: whole, in parts, by picking elements,
/// and again after the cursor has been sent back to it. All ways must agree, and nothing but BadRecord with
/// a place inside the file may come of damage.
void checkRecords(std::vector<std::byte> bytes, const Form& form);

}  // namespace lumbarn::fuzz
