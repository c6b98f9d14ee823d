#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../text/DeckScanner.h"

namespace lumbarn {

/// A number of an array as a deck has it, as often as it says.
struct DeckRun {
  std::int64_t count = 1;
  double value = 0;
  bool given = true;  ///< False for "3*": these cells keep what they have
};

/// The numbers of an array or of tables, in order, read from the deck's files in one pass.
class DeckNumbers {
 public:
  /// Both must outlive this object.
  DeckNumbers(const DeckFiles& files, const DeckKeyword& keyword) : files_(&files), keyword_(&keyword) {}

  /// The next numbers; empty at the end of the record. The view is valid until the next call. Throws
  /// BadRecord (DeckValue, with line and byte) for a word that is not a number, after all numbers before it
  /// were returned.
  std::span<const DeckRun> next();

 private:
  bool nextLine();
  void takeLine();
  const char* takeWord(const char* at, const char* end);
  void noteDamage(std::string_view word);

  const DeckFiles* files_;
  const DeckKeyword* keyword_;
  std::unique_ptr<TextWindow> window_;
  std::size_t piece_ = 0;  // counted from 1 while one is read
  std::uint64_t position_ = 0;
  std::int64_t line_ = 0;
  std::string_view all_;
  bool ended_ = false;
  std::optional<Diagnosis> damage_;  // thrown after the numbers before it
  std::vector<DeckRun> runs_;
};

/// How many numbers an array has, defaults included; the largest number there is where they are more.
std::int64_t countOf(const DeckFiles& files, const DeckKeyword& keyword);

}  // namespace lumbarn
