#include "ChosenTests.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../files/Recogniser.h"
#include "../frame/Error.h"

namespace lumbarn {
namespace {

bool isOfTests(FileKind kind) {
  return kind == FileKind::Rft || kind == FileKind::UserRft || kind == FileKind::UserPlt;
}

/// The file of tests of a run, its kind as its content tells it.
RunMember testFile(const RunState& run) {
  if (const RunMember* given = run.family().givenMember()) {
    RunMember member = *given;
    member.kind = recogniseFile(given->path).kind;
    if (isOfTests(member.kind)) return member;
    if (given->kind == FileKind::Unknown) {
      std::string why;
      if (!FileSource::open(given->path, why))
        throw Error(Error::Kind::NotFound,
                    {.message = Message::RunFileMissing, .path = given->path, .problem = why});
      throwRefused(given->path, "is no RFT file, and no text that RFT or PLT opens");
    }
  }
  RunMember member = run.file(FileKind::Rft);
  const FileKind kind = recogniseFile(member.path).kind;
  if (isOfTests(kind)) member.kind = kind;
  return member;
}

[[noreturn]] void throwMissing(const std::string& path, std::string problem) {
  throw Error(Error::Kind::NotFound,
              {.message = Message::RequestMissing, .path = path, .problem = std::move(problem)});
}

TimePoint timeOf(const TestSummary& test) { return {.date = toLocal(test.date)}; }

}  // namespace

ChosenTests::ChosenTests(const RunState& run, const TestSelection& selection, bool withColumns,
                         StreamContext& context)
    : selection_(selection),
      withColumns_(withColumns),
      context_(context),
      file_(testFile(run)),
      names_(selection.wells) {
  if (!selection.time.steps.empty() || selection.time.every == Every::ReportStep)
    throwRefused(file_.path, "well tests have no report steps; they are chosen by date");
  context.session().NullValue = static_cast<double>(TestFile::none);
  context.session().faultReporter = nullptr;  // diagnoses tell the same
  tests_ = TestFile::open(file_.path, file_.kind, selection.part, context.session());
  auto first = tests_ ? read() : std::nullopt;
  if (first) {
    ready_.push_front(std::move(*first));
  } else if (count_ == 0 && context.worst()) {
    throw Error(Error::Kind::Damaged, *context.worst());
  } else if (count_ > 0 || withColumns || !selection.numbers.empty()) {
    throwNone();
  }
}

std::optional<ChosenTest> ChosenTests::next() { return read(); }

std::optional<ChosenTest> ChosenTests::read() {
  while (ready_.empty() && tests_) {
    ChosenTest one;
    if (isPastLast() || !tests_->next(one.test)) {
      if (context_.session().cancelled()) throw LoadCanceled();
      tests_.reset();
      giveHeld();
      break;
    }
    ++count_;
    if (!wants(one.test)) continue;
    std::string why;
    if (withColumns_) one.columns = tests_->columns(selection_.branch, why);
    if (!why.empty()) {
      if (++withoutPart_ == 1) why_ = std::move(why);
      continue;
    }
    any_ = true;
    take(std::move(one));
  }
  if (ready_.empty()) return std::nullopt;
  auto test = std::move(ready_.front());
  ready_.pop_front();
  return test;
}

/// Tests by number are found in the order of the file, so the rest of it need not be read.
bool ChosenTests::isPastLast() const {
  return !selection_.numbers.empty() && count_ >= std::ranges::max(selection_.numbers);
}

bool ChosenTests::wants(const TestSummary& test) {
  const auto& numbers = selection_.numbers;
  if (!numbers.empty() && std::ranges::find(numbers, test.number) == numbers.end()) return false;
  if (!names_.wants(test.well)) return false;
  if (isWithin(selection_.time, timeOf(test))) return true;
  if (!any_) outside_.push_back(timeOf(test));
  return false;
}

/// Of each well by itself: the last test of a run would be that of any one well.
void ChosenTests::take(ChosenTest&& test) {
  const TimeSelection& time = selection_.time;
  if (!time.last && !time.at && time.every == Every::Row) return ready_.push_back(std::move(test));
  const auto [place, isNew] = held_.try_emplace(test.test.well);
  if (!isNew && !keepsLaterOnly(time, timeOf(place->second.test), timeOf(test.test)))
    ready_.push_back(std::move(place->second));
  place->second = std::move(test);
}

void ChosenTests::giveHeld() {
  for (auto& [well, test] : held_) ready_.push_back(std::move(test));
  held_.clear();
  std::ranges::sort(ready_, {}, [](const ChosenTest& one) { return one.test.number; });
}

void ChosenTests::throwNone() {
  if (!isPastLast() && !selection_.numbers.empty()) {
    throwMissing(file_.path, fmt::format("has {} test{}, there is no test {}", count_, count_ == 1 ? "" : "s",
                                         std::ranges::max(selection_.numbers)));
  }
  names_.throwIfNone(file_.path);
  if (!why_.empty() && context_.worst()) throw Error(Error::Kind::Damaged, *context_.worst());
  if (!why_.empty())
    throwMissing(file_.path, withoutPart_ > 1 ? "no test that was chosen has such a table: " + why_ : why_);
  chooseTimes(selection_.time, outside_, file_.path);
  throwMissing(file_.path, "has no tests");
}

}  // namespace lumbarn
