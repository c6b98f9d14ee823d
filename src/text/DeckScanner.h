#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "DeckFiles.h"
#include "DeckForm.h"
#include "DeckLine.h"
#include "TextWindow.h"

namespace lumbarn {

class Session;

/// A range of a file with data of a keyword: complete lines, except that the first may start on the line of
/// the keyword.
struct LUMBARN_API DeckPiece {
  std::uint32_t file = 0;  ///< number in `DeckScanner::files`
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  std::int64_t line = 0;  ///< of `begin`, from 1
};

/// One keyword of a deck with the locations of its data.
struct LUMBARN_API DeckKeyword {
  std::string name;  ///< in upper case, 8 characters at most
  DeckForm form = DeckForm::Open;
  bool known = false;
  bool closed = true;           ///< its data end as its form says
  std::int32_t section = 0;     ///< see `sectionOfDeck`; that of a section's own keyword is the section
  std::uint32_t file = 0;       ///< number in `DeckScanner::files`
  std::uint64_t offset = 0;     ///< of its line
  std::int64_t line = 0;        ///< from 1
  std::int64_t records = 0;     ///< without the empty one that closes a list or the last table
  std::vector<DeckPiece> data;  ///< several where an included file has some of it
};

/// The meaning of a range of a file. The spans of a file are in order and cover every byte once.
struct LUMBARN_API DeckSpan {
  enum class Kind : std::uint8_t {
    Keyword,  ///< a keyword's line with its data behind it, or data that go on in this file
    Include,  ///< INCLUDE with the name of the file
    Comment,
    Blank,
    Skipped,  ///< skipped by SKIP, SKIP100 or SKIP300
    Stray,    ///< what belongs to no keyword: a "/" too many, data behind a keyword without such
    Behind,   ///< behind END or ENDINC
  };
  Kind kind{};
  std::uint32_t file = 0;
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
};

/// An irregularity of a deck with its location.
struct LUMBARN_API DeckNote {
  enum class Kind : std::uint8_t {
    UnknownKeyword,
    NotClosed,      ///< a keyword begins where data of the one before are expected
    FileEnds,       ///< the deck ends within a record
    OpenQuote,      ///< a quote that is not closed on its line
    PastColumn128,  ///< simulators read 128 columns
    Stray,          ///< text that belongs to no keyword
    DataOnLine,     ///< data on the keyword's own line, where simulators read none
    NoSlash,        ///< the name of an included file is not followed by "/"
    MissingFile,
    OtherCase,    ///< an included file whose name differs in letter case
    OtherFolder,  ///< an included file found next to the file that names it, not in the deck's folder
    Cycle,        ///< an included file includes itself
    Binary,       ///< characters 0, or a text in another encoding
    UnknownAlias,
  };
  Kind kind{};
  std::uint32_t file = 0;
  std::int64_t line = 0;
  std::uint64_t offset = 0;
  std::string keyword;  ///< in which it is
  std::string text;     ///< the word, the name, the path
};

enum class DeckSimulator : std::uint8_t { FromPhases, E100, E300 };

/// Walks a deck from keyword to keyword through all files that it includes. Data are looked at only as far as
/// finding their end needs, and none are kept.
class LUMBARN_API DeckScanner {
 public:
  using Spans = std::function<void(const DeckSpan&)>;
  using Notes = std::function<void(const DeckNote&)>;

  /// `forms` must outlive the scanner. Throws BadRecord when the deck cannot be opened.
  DeckScanner(const std::string& path, const DeckForms& forms, const Session& session,
              DeckSimulator simulator = DeckSimulator::FromPhases);
  /// A deck in memory; its includes are searched in the current folder.
  DeckScanner(std::shared_ptr<const ByteSource> source, const DeckForms& forms, const Session& session,
              DeckSimulator simulator = DeckSimulator::FromPhases);

  /// The next keyword; INCLUDE is none, see `files`. False at the end. Throws BadRecord when a file cannot be
  /// read, and LoadCanceled.
  bool next(DeckKeyword& keyword);

  const DeckFiles& files() const { return files_; }
  std::int32_t section() const { return section_; }
  /// The simulator whose SKIP keywords count, as far as the deck has shown it.
  DeckSimulator simulator() const { return simulator_; }

  // Both may be set before the first call of `next`.
  Spans onSpan;
  Notes onNote;

 private:
  struct Level {
    std::uint32_t file = 0;
    std::unique_ptr<TextWindow> window;
    std::uint64_t position = 0;
    std::int64_t line = 1;
  };
  Level& top() { return levels_.back(); }

  // Each takes a line, and gives true when a keyword is complete by it, or before it.
  bool step(DeckKeyword& keyword);
  bool lineInRecord(const DeckLine& line, std::string_view all, DeckKeyword& keyword);
  bool lineBetween(const DeckLine& line, std::string_view all, DeckKeyword& keyword);
  bool start(std::string_view word, const DeckLine& line, std::string_view all, DeckKeyword& keyword);
  bool feed(const DeckLine& line, std::string_view all, DeckKeyword& keyword);
  bool finish(DeckKeyword& keyword);

  bool begins(std::string_view word, const DeckLine& line) const;
  bool isInclude(std::string_view word, const DeckLine& line) const;
  void include(const DeckLine& line, std::string_view all);
  std::string includedName(std::string_view behindKeyword);
  void takePath(const DeckLine& line);
  void skipText(std::string_view all);
  void skipNumbers();
  void noteNotClosed();

  void push(std::uint32_t file, std::shared_ptr<const ByteSource> source);
  void pop();
  void endOfDeck();
  void advance(std::string_view all);
  void emit(DeckSpan::Kind kind, std::uint64_t begin, std::uint64_t end);
  void emitTrailing();
  void note(DeckNote::Kind kind, std::string_view text, std::size_t column = 0);
  void look(const DeckLine& line, std::string_view all);

  const DeckForms* forms_;
  const Session* session_;
  DeckSimulator simulator_;
  DeckFiles files_;
  std::shared_ptr<const ByteSource> deck_;  // until the first keyword is asked for
  std::vector<Level> levels_;
  std::int32_t section_ = 0;

  bool open_ = false;  // the keyword below is not complete
  DeckKeyword current_;
  std::int32_t recordsLeft_ = 0;
  bool inRecord_ = false;
  std::int64_t linesOfRecord_ = 0;
  bool emptyLast_ = false;                 // the record before had no words
  std::vector<DeckSpan> trailing_;         // comments behind the data so far of the open keyword
  std::vector<std::string> path_;          // words of a record of PATHS
  std::uint32_t wideFile_ = UINT32_MAX;    // where a line past column 128 was noted last
  std::uint32_t binaryFile_ = UINT32_MAX;  // where a character 0 was
};

}  // namespace lumbarn
