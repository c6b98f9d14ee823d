#include "LineReader.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

#include "../support/Diagnosis.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

constexpr std::size_t transfer = std::size_t{64} << 10;

}  // namespace

LineReader::LineReader(std::shared_ptr<const ByteSource> source, std::string path)
    : source_(std::move(source)), path_(std::move(path)) {
  buffer_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(transfer, source_->size())));
}

/// Gets more bytes behind those at hand; false at the end of the file.
bool LineReader::fill() {
  const std::uint64_t left = source_->size() - readTo_;
  if (left == 0) return false;
  std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
  if (end_ == buffer_.size()) {  // a line longer than the buffer; no more than the file has
    buffer_.resize(end_ + static_cast<std::size_t>(std::min<std::uint64_t>(left, end_)));
  }
  const auto room = std::as_writable_bytes(std::span(buffer_)).subspan(end_);
  const std::size_t taken = source_->readAt(readTo_, room);
  end_ += taken;
  readTo_ += taken;
  return true;
}

void LineReader::skipMark() {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  while (end_ - begin_ < mark.size() && fill()) {
  }
  if (rest().starts_with(mark)) begin_ += mark.size();
}

/// Sets `line_` to what stands before the next line end, or to all that is left.
void LineReader::takeLine() {
  const auto isEnd = [](char c) { return c == '\n' || c == '\r'; };
  std::size_t length = 0;
  do {
    const auto text = rest();
    const auto* unseen = text.data() + length;
    length = static_cast<std::size_t>(std::find_if(unseen, text.data() + text.size(), isEnd) - text.data());
  } while (begin_ + length == end_ && fill());
  line_ = rest().substr(0, length);
  begin_ += length;
  if (begin_ == end_) return;
  afterReturn_ = buffer_[begin_] == '\r';
  ++begin_;
}

bool LineReader::atEnd() {
  if (again_) return false;
  if (number_ == 0 && readTo_ == 0) skipMark();
  if (begin_ == end_ && !fill()) return true;
  if (std::exchange(afterReturn_, false) && buffer_[begin_] == '\n') ++begin_;
  return begin_ == end_ && !fill();
}

bool LineReader::next() {
  if (std::exchange(again_, false)) return true;
  if (atEnd()) return false;
  lineAt_ = readTo_ - (end_ - begin_);
  ++number_;
  takeLine();
  return true;
}

bool checkIfCommentLine(std::string_view zLine) {
  const auto trimmed = trim(zLine);
  if (trimmed.empty()) return true;
  if (trimmed.size() < 2 || !zLine.starts_with("--")) return false;
  return trimmed.size() < 5 || !zLine.starts_with("--qv");
}

}  // namespace lumbarn
