#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "../record/LineReader.h"
#include "../support/Export.h"

namespace lumbarn {

/// An open file of a deck, read line by line, with one step back.
class LUMBARN_API DeckLines {
 public:
  /// Null with `why` set when the file cannot be opened.
  static std::unique_ptr<DeckLines> open(const std::string& path, std::string& why);
  explicit DeckLines(std::shared_ptr<const ByteSource> source) : reader_(source, source->path()) {}
  DeckLines(const DeckLines&) = delete;
  DeckLines& operator=(const DeckLines&) = delete;

  /// False at the end of the file, with an empty line. Throws BadRecord when the file cannot be read.
  bool readLine(std::string& line);
  /// The same without a copy: `line` holds until `next` or `hasMoreData`.
  bool next();
  std::string_view line() const { return line_; }
  bool hasMoreData();
  /// Remembers the place in front of the next line, for `returnToPosition` behind that line.
  void notePosition() { noted_ = true; }
  void returnToPosition() { again_ = kept_; }
  void forgetPosition() { noted_ = kept_ = false; }
  /// How many lines were read.
  std::int64_t currentLine() const { return reader_.number() - (again_ ? 1 : 0); }
  std::uint64_t offset() const { return reader_.position(); }  ///< of the current line
  std::uint64_t size() const { return reader_.size(); }
  const std::string& path() const { return reader_.path(); }

 private:
  LineReader reader_;
  std::string_view line_;
  std::string last_;    // the line behind the place that was noted, where the reader no longer has it
  bool noted_ = false;  // that line comes next
  bool kept_ = false;   // it was read last
  bool again_ = false;  // and is to be read again
};

}  // namespace lumbarn
