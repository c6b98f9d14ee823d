#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Session.h"
#include "DeckContents.h"
#include "DeckReading.h"
#include "qvEclipseData.h"

namespace lumbarn {

/// Reads a deck once from top to bottom, through its includes, and hands each keyword that is known to its
/// parser. A keyword that no parser takes is skipped with its data, which are lines that name no keyword.
///
/// Deliberate, as hosts know it: keywords are sought in the first eight columns; END in an include ends the
/// deck; INCLUDE in GRID, EDIT and REGIONS is read only with `ProcessAll`; an absolute path of Unix form is
/// listed and not read; names in an include count from the folder of the deck; a fault in a parser is
/// reported and the deck read on.
class DeckLoader {
 public:
  /// All are kept by reference. `reading` hands the lines of data to the stores of `deck`.
  DeckLoader(DeckContents& deck, const DeckLoadOptions& options, DeckReading& reading, Session& session)
      : deck_(deck), options_(options), reading_(reading), session_(session) {}

  /// A complete deck. False when it cannot be opened or has no line. Throws LoadCanceled, and BadRecord when
  /// reading fails.
  bool load(const std::string& zDeckFile);
  /// The same of bytes from anywhere. Includes count from the folder of the source's path.
  bool load(std::shared_ptr<const ByteSource> source);
  /// One file and what it includes, as a deck or as an include of one. False and throws likewise.
  /// `includer` is the file that names an include, for what is reported.
  bool loadFile(const std::string& zPath, const std::string& zName, bool include,
                const DeckLines* includer = nullptr);

 private:
  /// What becomes of a file after a line.
  enum class Next : std::uint8_t { GoOn, Stop };

  void begin(const std::string& zDeckPath);
  bool readFile(DeckLines& file, const std::string& path, bool include);
  bool readLines(DeckLines& file, bool include);
  Next takeLine(DeckLines& file, const std::string& raw, bool include);
  Next takeKeyword(DeckLines& file, const std::string& field, const std::string& raw, bool include);
  void takeInclude(DeckLines& file, const std::string& raw);
  void readInclude(const DeckLines& file, const std::string& zName);
  void takePaths(DeckLines& file);
  Next beginSection(std::int32_t section, const std::string& raw);
  void captureKeywordLine(std::string_view field, const std::string& raw);
  void noteFileForm(std::string_view field);
  void parse(DeckLines& file, std::string_view field);
  void finishSchedule();
  void yield(const DeckLines& file);
  DeckScheduleStore* schedule() const { return options_.RecordScheduleDeck ? options_.schedule : nullptr; }

  DeckContents& deck_;
  const DeckLoadOptions& options_;
  DeckReading& reading_;
  Session& session_;
  std::string zDeckPath_;
  DeckAliases aliases_;
  std::vector<std::string> open_;  // paths of the files that are being read
  bool qEndSeen_ = false;
};

}  // namespace lumbarn
