#include "DeckLines.h"

#include <utility>

namespace lumbarn {

std::unique_ptr<DeckLines> DeckLines::open(const std::string& path, std::string& why) {
  std::shared_ptr<const ByteSource> source = FileSource::open(path, why);
  return source ? std::make_unique<DeckLines>(std::move(source)) : nullptr;
}

bool DeckLines::readLine(std::string& line) {
  const bool noted = std::exchange(noted_, false);
  if (std::exchange(again_, false)) {
    line = last_;
    kept_ = noted;
    return true;
  }
  kept_ = false;
  line.clear();
  if (!reader_.next()) return false;
  line = reader_.line();
  kept_ = noted;
  if (noted) last_ = line;
  return true;
}

}  // namespace lumbarn
