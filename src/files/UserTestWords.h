#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace lumbarn {

/// The two kinds of user test files.
enum class UserTestKind { Rft, Plt };

/// What a command line of a user test file begins with.
enum class UserTestCommand { Open, Origin, WellName, GridName, WellType, DateFormat, Date, Time };

struct UserTestWord {
  UserTestCommand command;
  std::string_view word;
};

/// The word that opens a test.
constexpr std::string_view openingWord(UserTestKind kind) {
  return kind == UserTestKind::Rft ? "RFT" : "PLT";
}

/// All words of a kind. A longer one comes before the one that it begins with.
constexpr std::array<UserTestWord, 8> userTestWords(UserTestKind kind) {
  using enum UserTestCommand;
  return {{{Open, openingWord(kind)},
           {Origin, "ORIGIN"},
           {WellName, "WELLNAME"},
           {GridName, "GRIDNAME"},
           {WellType, "WELLTYPE"},
           {DateFormat, "DATEFORMAT"},
           {Date, "DATE"},
           {Time, "TIME"}}};
}

/// The word that an upper-case token is or begins with: "WELLNAMEP1" begins with a command.
constexpr std::optional<UserTestWord> userTestWord(UserTestKind kind, std::string_view token) {
  for (const UserTestWord& word : userTestWords(kind)) {
    if (token.starts_with(word.word)) return word;
  }
  return std::nullopt;
}

}  // namespace lumbarn
