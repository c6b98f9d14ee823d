#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../frame/Stream.h"
#include "../text/DeckScanner.h"

namespace lumbarn {

/// Which keywords of a deck.
struct DeckSelection {
  std::vector<std::string> keywords{};  ///< names or patterns; empty: all
  std::string section{};                ///< empty: all
};

/// A deck as the simulator reads it: its keywords in order, through all files that it includes. A handle,
/// inexpensive to copy; may be asked from several threads. The text is read once, to find the keywords, and
/// parts of it again for the data that are asked for.
///
/// Throws Error: NotFound for a file that is not there, Damaged for one that is no text, BadRequest,
/// Cancelled.
class Deck {
 public:
  /// Reports what is missing or damaged, and each unknown keyword once; `notes` has everything.
  static Deck open(const std::string& path, const ReadOptions& options = {},
                   DeckSimulator simulator = DeckSimulator::FromPhases);
  /// Whether a file is a deck, or a file of keywords that one includes: by its words, whatever its name.
  static bool isDeck(const std::string& path);

  const std::string& path() const;
  /// All keywords but INCLUDE, in the order in which they count.
  std::span<const DeckKeyword> keywords() const;
  const DeckFiles& files() const;
  /// Everything irregular, in order; no more than some thousands.
  std::span<const DeckNote> notes() const;
  DeckSimulator simulator() const;
  /// The keywords of a selection, as places in `keywords`. Throws Error NotFound with similar names when
  /// there are none.
  std::vector<std::size_t> chosen(const DeckSelection& selection) const;

  /// `section, keyword, file, line, records`: a row for each keyword. PATHS is left out, as it belongs to
  /// `includes`.
  Stream keywordTable(const DeckSelection& selection = {}, const ReadOptions& options = {}) const;
  /// `file, name, parent, line, depth, bytes, lines, state, why`: a row for each INCLUDE, with the line that
  /// has it, and in front one for the deck itself.
  Stream includes(const ReadOptions& options = {}) const;

 private:
  struct Index;
  explicit Deck(std::shared_ptr<const Index> index) : index_(std::move(index)) {}
  std::shared_ptr<const Index> index_;
};

/// What a note says, as a diagnosis with file, line and byte.
Diagnosis diagnosisOf(const DeckNote& note, const DeckFiles& files);

}  // namespace lumbarn
