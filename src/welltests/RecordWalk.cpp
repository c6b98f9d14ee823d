#include "RecordWalk.h"

#include <fmt/format.h>

namespace lumbarn {

bool RecordWalk::skipToTest(Session& session) {
  for (;;) {
    try {
      if (atDamage_ && !passDamage(session)) return false;
      for (; more(); ahead_ = false) {
        if (header().is("TIME", ElementType::Single)) return true;
      }
      cursor_.checkUnchanged();
      return false;
    } catch (BadRecord& damage) {
      setDamaged();
      damage.diagnosis().action = "kept the tests before it";
      // Not in the file's content: searching on would only meet it again.
      const bool system = damage.diagnosis().message == Message::FileRead ||
                          damage.diagnosis().message == Message::FileChanged;
      session.diagnose(std::move(damage.diagnosis()));
      if (system) return false;
    }
  }
}

/// Moves to the next sound header. False at the end of the file.
bool RecordWalk::passDamage(Session& session) {
  const Gap gap = cursor_.skipDamage();
  ahead_ = atDamage_ = false;
  if (gap.to >= cursor_.fileSize()) return false;
  session.diagnose({.message = Message::RecordGap,
                    .path = cursor_.path(),
                    .offset = gap.from,
                    .found = fmt::format("no records up to byte {}", gap.to),
                    .action = "continued with the next test"});
  return true;
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
