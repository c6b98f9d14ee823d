#include "DeckLines.h"

#include <utility>

namespace lumbarn {

std::unique_ptr<DeckLines> DeckLines::open(const std::string& path, std::string& why) {
  std::shared_ptr<const ByteSource> source = FileSource::open(path, why);
  return source ? std::make_unique<DeckLines>(std::move(source)) : nullptr;
}

bool DeckLines::next() {
  kept_ = std::exchange(noted_, false);
  if (std::exchange(again_, false)) return true;
  const bool any = reader_.next();
  line_ = any ? reader_.line() : std::string_view();
  kept_ = kept_ && any;
  return any;
}

bool DeckLines::readLine(std::string& line) {
  const bool any = next();
  line = line_;
  return any;
}

bool DeckLines::hasMoreData() {
  if (again_) return true;
  if (kept_ && line_.data() != last_.data()) {
    last_ = line_;
    line_ = last_;
  }
  return !reader_.atEnd();
}

}  // namespace lumbarn
