#include "RecordWalk.h"

namespace lumbarn {

bool RecordWalk::skipToTest() {
  for (; more(); ahead_ = false) {
    if (header().is("TIME", ElementType::Single)) return true;
  }
  return false;
}

std::unique_ptr<RecordWalk> openWalk(const std::string& path, const Form& form, std::string& why) {
  std::unique_ptr<const ByteSource> file = FileSource::open(path, why);
  if (!file) return nullptr;
  auto walk = std::make_unique<RecordWalk>(RecordCursor(std::move(file), form, path));
  walk->cursor().readAhead();
  return walk;
}

std::unique_ptr<RecordWalk> openWalk(const std::string& path, std::string& why) {
  const auto file = FileSource::open(path, why);
  if (!file) return nullptr;
  const auto detected = detectForm(*file);
  if (!detected) {
    why = file->size() == 0 ? "file is empty" : "is no record file";
    return nullptr;
  }
  return openWalk(path, detected->form, why);
}

}  // namespace lumbarn
