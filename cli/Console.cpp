#include "Console.h"

#include <algorithm>
#include <string>

#include <fmt/format.h>

#include "Failure.h"
#include "support/Text.h"

namespace lumbarn::cli {

std::string printable(std::string_view text) {
  std::string clean(text);
  for (char& c : clean) {
    if (static_cast<unsigned char>(c) < ' ' || c == '\x7F') c = '?';
  }
  return clean;
}

Console::Console(std::ostream& out, std::ostream& err, Session& session, bool terminal)
    : out_(out), err_(err), session_(session), progress_(err, session, terminal) {
  session.Container = &progress_;
  session.diagnosisSink = [this](const Diagnosis& diagnosis) { tell(diagnosis); };
  session.faultReporter = [this](std::string_view text) {
    note(Severity::Damage);  // whatever the operation returned, it did not run to its end
    say(text);
  };
}

Console::~Console() {
  if (diagnoses_ > shownDiagnoses) {
    say(fmt::format("{} more messages; \"lumbarn check\" lists all", diagnoses_ - shownDiagnoses));
  }
  session_.Container = nullptr;
  session_.diagnosisSink = nullptr;
  session_.faultReporter = nullptr;
}

void Console::say(std::string_view text) {
  progress_.hide();
  err_ << fmt::format("lumbarn: {}\n", printable(toUtf8(text))) << std::flush;
}

void Console::tell(const Diagnosis& diagnosis) {
  note(diagnosis.severity());
  std::string text = diagnosis.text();
  if (std::ranges::count(told_, text) > 0) return;  // met again as a file is read for another purpose
  if (++diagnoses_ > shownDiagnoses) return;
  say(text);
  told_.push_back(std::move(text));
}

void Console::giveUp(const std::string& path, const std::string& problem) const {
  throw Failure(Unreadable, !complete() ? "" : path + ": " + problem);
}

void Console::checkCancelled() const {
  if (session_.cancelled()) throw Failure(Cancelled, "cancelled");
}

}  // namespace lumbarn::cli
