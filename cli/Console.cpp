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

Console::Console(std::ostream& out, std::ostream& err, const std::atomic<bool>& stop, bool terminal)
    : out_(out), err_(err), stop_(stop), progress_(err, terminal) {}

Console::~Console() {
  if (diagnoses_ > shownDiagnoses) {
    say(fmt::format("{} more messages; \"lumbarn check\" lists all", diagnoses_ - shownDiagnoses));
  }
}

void Console::say(std::string_view text) {
  progress_.hide();
  err_ << fmt::format("lumbarn: {}\n", printable(toUtf8(text))) << std::flush;
}

void Console::tell(const Diagnosis& diagnosis) {
  worst_ = std::max(worst_.value_or(diagnosis.severity()), diagnosis.severity());
  std::string text = diagnosis.text();
  if (std::ranges::count(told_, text) > 0) return;  // met again as a file is read for another purpose
  if (++diagnoses_ > shownDiagnoses) return;
  say(text);
  told_.push_back(std::move(text));
}

void Console::checkCancelled() const {
  if (stop_) throw Failure(Cancelled, "cancelled");
}

}  // namespace lumbarn::cli
