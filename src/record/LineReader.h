#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "ByteSource.h"

namespace lumbarn {

/// The lines of a text file, one after the other. A line ends in LF, CR LF or CR; the last one need not have
/// an end, and behind the end of the last one there is no further line. Bytes are passed through as they are;
/// a byte order mark of UTF-8 in front is left out. Keeps one transfer, or the longest line where that is
/// longer.
class LUMBARN_API LineReader {
 public:
  /// The path is for messages.
  LineReader(std::shared_ptr<const ByteSource> source, std::string path);

  /// Moves to the next line; false behind the last one. Throws BadRecord when the file gives fewer bytes than
  /// it had at opening.
  bool next();
  /// The next call of `next` stays on this line.
  void stepBack() { again_ = true; }
  /// Whether `next` would find no line.
  bool atEnd();

  std::string_view line() const { return line_; }         ///< without its end; holds until `next` or `atEnd`
  std::int64_t number() const { return number_; }         ///< of the line, from 1
  std::uint64_t position() const { return lineAt_; }      ///< byte offset of the line, from 0
  std::uint64_t size() const { return source_->size(); }  ///< bytes of the file
  const std::string& path() const { return path_; }

 private:
  bool fill();
  void takeLine();
  void skipMark();
  std::string_view rest() const { return {buffer_.data() + begin_, end_ - begin_}; }

  std::shared_ptr<const ByteSource> source_;
  std::string path_;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;     // first byte that is not taken yet
  std::size_t end_ = 0;       // behind the last byte at hand
  std::uint64_t readTo_ = 0;  // place in the file of `end_`
  std::string_view line_;
  std::uint64_t lineAt_ = 0;
  std::int64_t number_ = 0;
  bool again_ = false;
  bool afterReturn_ = false;  // a LF that comes next belongs to the end of the line before
};

/// Whether a line of a text file is a comment: it is empty or of blanks and tabs, or begins with "--". A line
/// that begins with "--qv", in lower case and with more behind it, is a marker that counts.
LUMBARN_API bool checkIfCommentLine(std::string_view zLine);

}  // namespace lumbarn
