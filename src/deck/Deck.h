#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../frame/Stream.h"
#include "../support/Export.h"
#include "../text/DeckScanner.h"

namespace lumbarn {

/// Which keywords of a deck.
struct LUMBARN_API DeckSelection {
  std::vector<std::string> keywords{};  ///< names or patterns; empty: all
  std::string section{};                ///< empty: all
};

/// A deck as the simulator reads it: its keywords in order, through all files that it includes. A handle,
/// inexpensive to copy; may be asked from several threads. The text is read once, to find the keywords, and
/// parts of it again for the data that are asked for.
///
/// Throws Error: Damaged for a file that cannot be opened, NotFound, BadRequest, Cancelled.
class LUMBARN_API Deck {
 public:
  /// Reports what is missing or damaged, and each unknown keyword once; `notes` has everything.
  static Deck open(const std::string& path, const ReadOptions& options = {},
                   DeckSimulator simulator = DeckSimulator::FromPhases);
  /// The same for a session, whose faults it throws.
  static Deck read(const std::string& path, Session& session,
                   DeckSimulator simulator = DeckSimulator::FromPhases);

  const std::string& path() const;
  /// All keywords but INCLUDE, in the order in which they count.
  std::span<const DeckKeyword> keywords() const;
  const DeckFiles& files() const;
  /// All irregularities in deck order, at most 10,000.
  std::span<const DeckNote> notes() const;
  DeckSimulator simulator() const;
  /// Indices into `keywords` of the keywords that a selection matches. Throws Error NotFound with similar
  /// names when there are none.
  std::vector<std::size_t> chosen(const DeckSelection& selection) const;

  /// `section, keyword, file, line, records`: a row for each keyword. PATHS is omitted, as it belongs to
  /// `includes`.
  Stream keywordTable(const DeckSelection& selection = {}, const ReadOptions& options = {}) const;
  /// `file, name, parent, line, depth, bytes, lines, state, why`: a row for each INCLUDE, with the line that
  /// has it, and in front one for the deck itself.
  Stream includes(const ReadOptions& options = {}) const;
  /// The records of the keywords of one name: `occurrence, file, line` and a column for each item, null for
  /// defaults. Items have their names, types and units where they are known: whole numbers Int32, others
  /// Float64, those that may name a quantity of the user's Utf8; else there are as many columns Utf8 `item1`,
  /// `item2` ... as the longest record has. Of a keyword whose first record is of its own kind, as WELSEGS,
  /// all rows have the columns of both, and the first item of that record. Throws Error NotFound with similar
  /// names, BadRequest for a pattern that matches several names.
  Stream records(const std::string& name, const std::string& section = {},
                 const ReadOptions& options = {}) const;

  /// `occurrence, index` and the values of an array as the deck has them, Float64, null for defaults. Throws
  /// Error NotFound, and BadRequest for a keyword that is no array.
  Stream arrayAsWritten(const std::string& name, const ReadOptions& options = {}) const;
  /// `i, j, k` and the values of an array in all cells of a grid as the simulator has them after all
  /// operations of the deck, see `effectiveArray`: Int32 for regions and the like, else Float32, null where
  /// the deck gives none.
  Stream cells(const std::string& name, const std::string& grid = "ROOT",
               const ReadOptions& options = {}) const;

  /// `file, line, text`: the lines of all files that contain a text, in any letter case, comments too.
  Stream grep(const std::string& text, const ReadOptions& options = {}) const;

  /// 1 metric, 2 field, 3 laboratory, 4 metric with atmospheres: by METRIC, FIELD, LAB, PVT-M; without one of
  /// them metric.
  std::int32_t unitSystem() const;

 private:
  struct Index;
  explicit Deck(std::shared_ptr<const Index> index) : index_(std::move(index)) {}
  std::shared_ptr<const Index> index_;
};

/// What a note says, as a diagnosis with file, line and byte.
LUMBARN_API Diagnosis diagnosisOf(const DeckNote& note, const DeckFiles& files);

}  // namespace lumbarn
