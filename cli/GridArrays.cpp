#include "GridArrays.h"

#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include "Failure.h"
#include "RecordData.h"
#include "Suggestion.h"
#include "files/FileChoice.h"

namespace lumbarn::cli {

class GridArrays::Source {
 public:
  /// A cursor on the record.
  RecordCursor& at(const Place& place) {
    if (!cursor_ || cursor_->path() != place.path) {
      std::string why;
      cursor_ = openRecords(place.path, why);
      headerAt_.reset();
      if (!cursor_) throw BadRecord({.message = Message::FileOpen, .path = place.path, .problem = why});
    }
    if (headerAt_ != place.header.headerAt) cursor_->setCurrent(place.header);
    headerAt_ = place.header.headerAt;
    return *cursor_;
  }

 private:
  std::unique_ptr<RecordCursor> cursor_;
  std::optional<std::uint64_t> headerAt_;
};

GridArrays::GridArrays(const RunFamily& run, const Hadrick& grid, std::optional<std::int32_t> step,
                       Console& console)
    : grid_(grid), oneStep_(step.has_value()), source_(std::make_shared<Source>()), console_(console) {
  if (const RunMember* file = run.find(FileKind::Init)) {
    std::vector<Step> whole(1);
    walk(file->path, whole, console);
    init_ = std::move(whole.front());
  }
  for (const std::string& file : chooseFiles(console.session(), run, FileKind::Restart).files) {
    if (!isStepFile(file)) {
      walk(file, steps_, console);
      continue;
    }
    const std::int32_t number = GetNumericPartOfFileName(file);
    std::vector<Step> one{{number, static_cast<double>(number), {}}};
    walk(file, one, console);
    steps_.push_back(std::move(one.back()));
  }
  if (!step) return;
  std::erase_if(steps_, [&](const Step& each) { return each.number != *step; });
  if (steps_.empty()) throw Failure(Usage, fmt::format("no restart step {} is there", *step));
}

void GridArrays::walk(const std::string& path, std::vector<Step>& steps, Console& console) const {
  const std::string wanted = grid_.isLocal() ? grid_.zName : "";
  std::string section;  // the local grid that records belong to
  std::string why;
  const auto cursor = openRecords(path, why);
  if (!cursor) {
    return console.tell(
        {.message = Message::FileOpen, .path = path, .problem = why, .action = "read nothing of it"});
  }
  try {
    while (cursor->next()) {
      console.checkCancelled();
      showProgress(*cursor, console);
      const RecordHeader& header = cursor->header();
      const std::int64_t count = header.count;
      if (header.is("SEQNUM", ElementType::Integer) && count > 0) {
        std::int32_t number = 0;
        cursor->read(std::span(&number, 1));
        // A file of one step may begin with the step's number too.
        if (steps.empty() || !steps.back().arrays.empty() || steps.back().number != number)
          steps.push_back({number, static_cast<double>(number), {}});
        section.clear();
      } else if (header.is("LGR", ElementType::Text) && count > 0) {
        section = cursor->texts().front();
      } else if (header.keyword == "ENDLGR" || header.keyword == "LGRSGONE") {
        section.clear();
      } else if (steps.empty()) {
        continue;  // what stands before the first step belongs to none
      } else if (header.is("DOUBHEAD", ElementType::Double) && count > 0 && section.empty()) {
        cursor->read(std::span(&steps.back().days, 1));
      }
      const bool numbers = header.type == ElementType::Single || header.type == ElementType::Double ||
                           header.type == ElementType::Integer;
      const bool forCells = count == grid_.nActive() || count == grid_.nCells();
      if (numbers && forCells && section == wanted && !steps.empty())
        steps.back().arrays.try_emplace(header.keyword, Place{path, header});
    }
  } catch (const BadRecord& damage) {
    Diagnosis diagnosis = damage.diagnosis();
    diagnosis.action = "took what stands before it";
    console.tell(diagnosis);
  }
}

std::vector<double> GridArrays::times() const {
  std::vector<double> times;
  for (const Step& step : steps_) times.push_back(step.days);
  return times;
}

std::vector<std::string> GridArrays::names() const {
  std::vector<std::string> all;
  const auto add = [&](const Step& step) {
    for (const auto& [name, place] : step.arrays) {
      if (std::ranges::count(all, name) == 0) all.push_back(name);
    }
  };
  for (const Step& step : steps_) add(step);
  add(init_);
  return all;
}

CellArray GridArrays::array(const std::string& name) const {
  std::vector<const Place*> places;
  const auto find = [&](const Step& step) -> const Place* {
    const auto found = step.arrays.find(name);
    return found == step.arrays.end() ? nullptr : &found->second;
  };
  bool any = false;
  for (const Step& step : steps_) {
    places.push_back(find(step));
    any = any || places.back();
  }
  if (any) {
    for (std::size_t i = 0; i < places.size(); ++i) {
      if (!places[i]) console_.say(fmt::format("{} has no values in step {}", name, steps_[i].number));
    }
    CellArray array = arrayOf(name, places);
    array.changes = !oneStep_;
    return array;
  }
  if (const Place* place = find(init_)) return arrayOf(name, {place});
  const auto known = names();
  const std::string better = closest(name, known);
  throw Failure(Usage,
                fmt::format("no array \"{}\" with a value for each cell is in the restart or the INIT "
                            "file{}",
                            name, better.empty() ? "" : fmt::format("; did you mean \"{}\"?", better)));
}

/// An array has the type that it has in its first step.
CellArray GridArrays::arrayOf(const std::string& name, std::vector<const Place*> places) const {
  const Place* first = *std::ranges::find_if(places, [](const Place* place) { return place != nullptr; });
  CellArray array{.name = name, .read = {}};
  if (first->header.type == ElementType::Integer) {
    array.read = reader<std::int32_t>(std::move(places));
  } else if (first->header.type == ElementType::Double) {
    array.read = reader<double>(std::move(places));
  } else {
    array.read = reader<float>(std::move(places));
  }
  return array;
}

template <class Number>
CellReader<Number> GridArrays::reader(std::vector<const Place*> places) const {
  return [this, places = std::move(places)](std::size_t step, std::size_t first, std::span<Number> values) {
    // No number, or for integers, which have none that says so, 0.
    std::ranges::fill(values, std::numeric_limits<Number>::quiet_NaN());
    if (!places[step] || values.empty()) return;
    RecordCursor& cursor = source_->at(*places[step]);
    if (cursor.header().count == grid_.nActive())
      return cursor.read(values, static_cast<std::int64_t>(first));
    const auto cellOf = [&](std::size_t i) { return grid_.cellOf(static_cast<std::int32_t>(first + i) + 1); };
    const std::int32_t firstCell = cellOf(0);
    std::vector<Number> cells(static_cast<std::size_t>(cellOf(values.size() - 1) - firstCell) + 1);
    cursor.read(std::span(cells), firstCell - 1);
    for (std::size_t i = 0; i < values.size(); ++i)
      values[i] = cells[static_cast<std::size_t>(cellOf(i) - firstCell)];
  };
}

}  // namespace lumbarn::cli
