#pragma once

#include <cstdint>
#include <optional>

#include "../record/ByteSource.h"
#include "UserTestWords.h"

namespace lumbarn {

/// What a text of measured well tests is.
struct UserTestText {
  UserTestKind kind = UserTestKind::Rft;
  bool stated = false;       ///< by the word that opens a test; otherwise by its columns
  std::uint64_t offset = 0;  ///< byte of the line that shows it
};

/// Recognizes a text of well tests: commands of one may come before the word that opens it, and a text
/// without any command begins with its column names, of which one must be a depth and one something that is
/// measured along a well. Nothing for any other text.
std::optional<UserTestText> recogniseUserTest(const ByteSource& source);

}  // namespace lumbarn
