#include "DeckGeometry.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "../grid/CornerRows.h"
#include "../text/DeckRecords.h"
#include "CellArrays.h"
#include "DeckNumbers.h"

namespace lumbarn {

namespace {

const DeckKeyword* lastOf(const Deck& deck, std::string_view name) {
  const DeckKeyword* found = nullptr;
  for (const DeckKeyword& keyword : deck.keywords()) {
    if (keyword.name == name && keyword.section == 2) found = &keyword;
  }
  return found;
}

/// Collects what makes up a grid.
class Builder {
 public:
  Builder(const Deck& deck, Session& session) : deck_(&deck), session_(&session) {
    const auto sizes = gridSizes(deck);
    const auto root = sizes.find("ROOT");
    if (root == sizes.end()) {
      throw Error(Error::Kind::BadRequest, {.message = Message::RequestRefused,
                                            .path = deck.path(),
                                            .problem = "the deck does not give the size of its grid"});
    }
    grid_.size = root->second;
  }

  DeckGeometry build() {
    if (lastOf(*deck_, "ZCORN")) {
      takePillars();
      takeDepths();
    } else {
      grid_.radial = lastOf(*deck_, "INRAD") || lastOf(*deck_, "DRV");
      makePillars();
      makeDepths();
    }
    if (lastOf(*deck_, "ACTNUM") || setByOperation("ACTNUM")) {
      const DeckArray active = effectiveArray(*deck_, "ACTNUM", *session_);
      grid_.actnum.assign(active.values.size(), 0);
      std::transform(active.values.begin(), active.values.end(), grid_.actnum.begin(),
                     [](double value) { return value > 0 ? 1 : 0; });
    }
    return std::move(grid_);
  }

 private:
  std::size_t n(std::size_t axis) const { return static_cast<std::size_t>(grid_.size[axis]); }

  bool setByOperation(std::string_view name) const {
    const auto sets = [&](const DeckKeyword& keyword) {
      if (keyword.section != 2 || (keyword.name != "EQUALS" && keyword.name != "COPY")) return false;
      DeckRecords records(deck_->files(), keyword);
      DeckRecord record;
      while (records.next(record)) {
        const std::int64_t target = keyword.name == "COPY" ? 1 : 0;
        if (record[target] == name) return true;
      }
      return false;
    };
    return std::any_of(deck_->keywords().begin(), deck_->keywords().end(), sets);
  }

  [[noreturn]] void missing(const std::string& names) const {
    throw Error(Error::Kind::NotFound,
                {.message = Message::RequestMissing,
                 .path = deck_->path(),
                 .problem = "the deck has no " + names + ", which its corners follow from"});
  }

  void reportCount(const DeckKeyword& keyword, std::size_t wanted, std::size_t found) {
    session_->diagnose({.message = Message::DeckCount,
                        .path = deck_->files()[keyword.file].path,
                        .keyword = keyword.name,
                        .offset = keyword.offset,
                        .line = keyword.line,
                        .expected = std::to_string(wanted),
                        .found = found > wanted ? "more" : std::to_string(found),
                        .action = found > wanted ? "ignored the rest" : "set the others to 0"});
  }

  /// The numbers of a keyword, one after the other; defaulted values are skipped.
  template <class Put>
  void take(const DeckKeyword& keyword, std::size_t wanted, Put put) {
    std::size_t place = 0;
    DeckNumbers numbers(deck_->files(), keyword);
    for (auto runs = numbers.next(); !runs.empty(); runs = numbers.next()) {
      for (const DeckRun& run : runs) {
        if (run.count > static_cast<std::int64_t>(wanted - place))
          return reportCount(keyword, wanted, wanted + 1);
        for (std::int64_t i = 0; i < run.count; ++i, ++place) {
          if (run.given) put(place, static_cast<float>(run.value));
        }
      }
    }
    if (place != wanted) reportCount(keyword, wanted, place);
  }

  /// Calls `visit` for each keyword of a name with the box in effect.
  template <class Visit>
  void withBoxes(std::string_view name, Visit visit) {
    BoxTracker tracker(*deck_);
    for (const DeckKeyword& keyword : deck_->keywords()) {
      tracker.take(keyword);
      if (keyword.name == name && keyword.section == 2 && tracker.grid() == "ROOT")
        visit(keyword, tracker.box());
    }
  }

  void takePillars() {
    if (!lastOf(*deck_, "COORD")) missing("COORD");
    const std::size_t row = n(0) + 1;
    grid_.coord.assign(6 * row * (n(1) + 1), 0);
    withBoxes("COORD", [&](const DeckKeyword& keyword, const DeckBox& box) {
      const auto width = static_cast<std::size_t>(box.to[0] - box.from[0] + 2);
      const auto height = static_cast<std::size_t>(box.to[1] - box.from[1] + 2);
      take(keyword, 6 * width * height, [&](std::size_t place, float value) {
        const std::size_t pillar = place / 6;
        const std::size_t i = static_cast<std::size_t>(box.from[0] - 1) + pillar % width;
        const std::size_t j = static_cast<std::size_t>(box.from[1] - 1) + pillar / width;
        grid_.coord[6 * (j * row + i) + place % 6] = value;
      });
    });
  }

  void takeDepths() {
    grid_.zcorn.assign(8 * n(0) * n(1) * n(2), 0);
    const std::size_t row = 2 * n(0);
    const std::size_t plane = row * 2 * n(1);
    withBoxes("ZCORN", [&](const DeckKeyword& keyword, const DeckBox& box) {
      const auto width = 2 * static_cast<std::size_t>(box.to[0] - box.from[0] + 1);
      const auto height = 2 * static_cast<std::size_t>(box.to[1] - box.from[1] + 1);
      const std::size_t first = 2 * static_cast<std::size_t>(box.from[2] - 1) * plane +
                                2 * static_cast<std::size_t>(box.from[1] - 1) * row +
                                2 * static_cast<std::size_t>(box.from[0] - 1);
      const bool whole = width == row && width * height == plane;
      take(keyword, static_cast<std::size_t>(8 * box.cells()), [&](std::size_t place, float value) {
        const std::size_t to =
            whole ? place : place / (width * height) * plane + place / width % height * row + place % width;
        grid_.zcorn[first + to] = value;
      });
    });
  }

  /// Sizes of cells along an axis, for all cells: of the array, or of the vector that has one for each layer.
  std::vector<double> sizesAlong(std::size_t axis) {
    const bool polar = grid_.radial && axis < 2;
    constexpr const char* arrays[][2] = {{"DX", "DR"}, {"DY", "DTHETA"}, {"DZ", "DZ"}};
    const std::string array = arrays[axis][polar ? 1 : 0];
    if (const DeckKeyword* vector = lastOf(*deck_, array + "V")) {
      std::vector<double> along(n(axis), 0);
      take(*vector, along.size(),
           [&](std::size_t place, float value) { along[place] = static_cast<double>(value); });
      std::vector<double> all(n(0) * n(1) * n(2));
      for (std::size_t cell = 0; cell < all.size(); ++cell) {
        const std::size_t index[] = {cell % n(0), cell / n(0) % n(1), cell / (n(0) * n(1))};
        all[cell] = along[index[axis]];
      }
      return all;
    }
    if (!lastOf(*deck_, array) && !setByOperation(array)) missing(array + " or " + array + "V");
    return effectiveArray(*deck_, array, *session_).values;
  }

  void makePillars() {
    const std::vector<double> dx = sizesAlong(0);
    const std::vector<double> dy = sizesAlong(1);
    double inner = 0;
    if (const DeckKeyword* keyword = lastOf(*deck_, "INRAD"))
      take(*keyword, 1, [&](std::size_t, float value) { inner = static_cast<double>(value); });
    const std::size_t row = n(0) + 1;
    grid_.coord.assign(6 * row * (n(1) + 1), 0);
    for (std::size_t j = 0; j <= n(1); ++j) {
      double x = inner;
      for (std::size_t i = 0; i <= n(0); ++i) {
        double y = 0;
        const std::size_t column = std::min(i, n(0) - 1);
        for (std::size_t below = 0; below < j; ++below) y += dy[below * n(0) + column];
        float* pillar = &grid_.coord[6 * (j * row + i)];
        pillar[0] = pillar[3] = static_cast<float>(x);
        pillar[1] = pillar[4] = static_cast<float>(y);
        if (i < n(0)) x += dx[std::min(j, n(1) - 1) * n(0) + i];
      }
    }
  }

  void makeDepths() {
    const std::vector<double> dz = sizesAlong(2);
    if (!lastOf(*deck_, "TOPS") && !setByOperation("TOPS")) missing("TOPS");
    std::vector<double> tops = effectiveArray(*deck_, "TOPS", *session_).values;
    const std::size_t layer = n(0) * n(1);
    grid_.zcorn.assign(8 * layer * n(2), 0);
    for (std::size_t cell = 0; cell < tops.size(); ++cell) {
      if (std::isnan(tops[cell]) && cell >= layer) tops[cell] = tops[cell - layer] + dz[cell - layer];
      const std::size_t i = cell % n(0);
      const std::size_t j = cell / n(0) % n(1);
      const std::size_t k = cell / layer;
      for (std::size_t corner = 0; corner < 8; ++corner) {
        const std::size_t place =
            (2 * k + corner / 4) * 4 * layer + (2 * j + corner / 2 % 2) * 2 * n(0) + 2 * i + corner % 2;
        grid_.zcorn[place] = static_cast<float>(tops[cell] + (corner / 4 == 1 ? dz[cell] : 0));
      }
    }
    const auto [top, bottom] = std::minmax_element(grid_.zcorn.begin(), grid_.zcorn.end());
    for (std::size_t pillar = 0; pillar < grid_.coord.size(); pillar += 6) {
      grid_.coord[pillar + 2] = *top;
      grid_.coord[pillar + 5] = *bottom;
    }
  }

  const Deck* deck_;
  Session* session_;
  DeckGeometry grid_;
};

}  // namespace

std::vector<float> DeckGeometry::corners() const {
  const std::vector<std::int32_t> reservoirs(static_cast<std::size_t>(size[2]), 0);
  const auto cells =
      static_cast<std::size_t>(size[0]) * static_cast<std::size_t>(size[1]) * reservoirs.size();
  std::vector<float> rows(24 * cells);
  const CornerSource source{.Nx = size[0],
                            .Ny = size[1],
                            .Nz = size[2],
                            .coord = coord,
                            .zcorn = zcorn,
                            .reservoirOfLayer = reservoirs};
  writeCornerRows(source,
                  {.first = 0, .count = cells, .activeOnly = false, .firstCell = 0, .lastCell = cells - 1},
                  nullptr, rows.data());
  return rows;
}

DeckGeometry deckGeometry(const Deck& deck, Session& session) { return Builder(deck, session).build(); }

}  // namespace lumbarn
