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
      checkUnchanged(session);
      return false;
    } catch (BadRecord& damage) {
      // Not in the file's content: searching on would only meet it again.
      const bool system = damage.diagnosis().message == Message::FileRead;
      setDamaged(damage, session);
      if (system) return false;
    }
  }
}

void RecordWalk::checkUnchanged(Session& session) {
  try {
    cursor_.checkUnchanged();
  } catch (BadRecord& change) {
    setDamaged(change, session);
  }
}

void RecordWalk::setDamaged(BadRecord& damage, Session& session) {
  setDamaged();
  damage.diagnosis().action = "kept the tests before it";
  session.diagnose(std::move(damage.diagnosis()));
}

bool RecordWalk::reportType(Session& session) const {
  auto report = unexpected(RecordFile::WellTest, header());
  if (!report || report->message != Message::RecordType) return false;
  report->path = cursor_.path();
  report->occurrence = cursor_.occurrence();
  report->action = "skipped the record";
  session.diagnose(std::move(*report));
  return true;
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
