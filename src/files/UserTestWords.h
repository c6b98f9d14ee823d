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

/// Whether a line is a remark of the program or person that wrote the text.
constexpr bool isUserTestRemark(std::string_view line) {
  return line.starts_with('#') || line.starts_with(';');
}

/// Whether a word begins as a number does: with a digit, behind a sign or a point at most.
constexpr bool beginsAsNumber(std::string_view word) {
  if (word.starts_with('+') || word.starts_with('-')) word.remove_prefix(1);
  if (word.starts_with('.')) word.remove_prefix(1);
  return !word.empty() && word[0] >= '0' && word[0] <= '9';
}

/// Names of depth columns in groups, the first group preferred: of its columns the last counts, of those of
/// the others the first.
using DepthColumns = std::array<std::array<std::string_view, 4>, 3>;
constexpr DepthColumns depthColumns(UserTestKind kind) {
  if (kind == UserTestKind::Plt)
    return {{{"CONLEN", "LENGTH"}, {"DEPTH", "LENGTH", "MDEPTH", "MD"}, {"WTVD", "TVD"}}};
  return {{{"DEPTH"}, {"MD", "MDEPTH"}, {"WTVD", "TVD"}}};
}
constexpr bool isDepthColumn(std::string_view name) {
  for (const auto& group : depthColumns(UserTestKind::Plt)) {
    for (const auto depth : group) {
      if (!depth.empty() && name == depth) return true;
    }
  }
  return false;
}

/// The word that an upper-case token is or begins with: "WELLNAMEP1" begins with a command.
constexpr std::optional<UserTestWord> userTestWord(UserTestKind kind, std::string_view token) {
  for (const UserTestWord& word : userTestWords(kind)) {
    if (token.starts_with(word.word)) return word;
  }
  return std::nullopt;
}

}  // namespace lumbarn
