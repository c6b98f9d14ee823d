#include <cmath>
#include <memory>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "../support/Session.h"
#include "../support/Text.h"
#include "CellArrays.h"
#include "Deck.h"
#include "DeckNumbers.h"

namespace lumbarn {

namespace {

/// The numbers of some keywords as rows.
struct WrittenRows {
  Deck deck;
  std::vector<std::size_t> places;
  std::shared_ptr<StreamContext> context;
  std::int64_t most;  // numbers of an array
  std::size_t place = 0;
  std::int64_t index = 0;
  std::optional<DeckNumbers> numbers{};
  std::span<const DeckRun> runs{};
  std::int64_t left = 0;  // of the first run

  bool fill(BatchBuilder& rows) {
    for (; place < places.size(); ++place, index = 0, numbers.reset()) {
      const DeckKeyword& keyword = deck.keywords()[places[place]];
      if (!numbers) numbers.emplace(deck.files(), keyword);
      while (next()) {
        for (; left > 0; --left) {
          if (rows.full()) return true;
          rows.set(0, static_cast<std::int32_t>(place + 1));
          rows.set(1, ++index);
          if (runs.front().given) rows.set(2, runs.front().value);
          rows.endRow();
        }
        runs = runs.subspan(1);
      }
    }
    return false;
  }

  /// Whether there is a number; `left` of the first run.
  bool next() {
    if (left > 0) return true;
    if (context->session().yield()) throw LoadCanceled();
    if (runs.empty()) runs = numbers->next();
    if (runs.empty()) return false;
    left = runs.front().count;
    if (left <= most - index) return true;
    const DeckKeyword& keyword = deck.keywords()[places[place]];
    throw BadRecord({.message = Message::DeckCount,
                     .path = deck.files()[keyword.file].path,
                     .keyword = keyword.name,
                     .offset = keyword.offset,
                     .line = keyword.line,
                     .expected = fmt::format("{} numbers at most", most),
                     .found = fmt::format("a repeat count of {}", left)});
  }
};

}  // namespace

Stream Deck::arrayAsWritten(const std::string& name, const ReadOptions& options) const {
  auto context = std::make_shared<StreamContext>(options);
  std::vector<std::size_t> places = chosen({.keywords = {name}});
  std::erase_if(places, [&](std::size_t place) { return keywords()[place].form != DeckForm::Array; });
  if (places.empty()) {
    throw Error(Error::Kind::BadRequest,
                {.message = Message::RequestRefused, .path = path(), .problem = name + " is no array"});
  }
  auto rows =
      std::make_shared<WrittenRows>(WrittenRows{*this, std::move(places), context, mostNumbers(*this)});
  Schema schema{{.name = "occurrence", .type = Type::Int32, .nullable = false},
                {.name = "index", .type = Type::Int64, .nullable = false},
                {.name = upper(name), .type = Type::Float64}};
  return streamOfRows(std::move(schema), std::move(context),
                      [rows](BatchBuilder& out) { return rows->fill(out); });
}

Stream Deck::cells(const std::string& name, const std::string& grid, const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    auto array = std::make_shared<const DeckArray>(effectiveArray(*this, name, context->session(), grid));
    Schema schema{{.name = "i", .type = Type::Int32, .nullable = false},
                  {.name = "j", .type = Type::Int32, .nullable = false},
                  {.name = "k", .type = Type::Int32, .nullable = false},
                  {.name = array->name, .type = array->whole ? Type::Int32 : Type::Float32}};
    return streamOfRows(std::move(schema), std::move(context),
                        [array, cell = std::size_t{0}](BatchBuilder& rows) mutable {
                          const auto ni = static_cast<std::size_t>(array->size[0]);
                          const auto nj = static_cast<std::size_t>(array->size[1]);
                          for (; cell < array->values.size() && !rows.full(); ++cell) {
                            rows.set(0, static_cast<std::int32_t>(cell % ni + 1));
                            rows.set(1, static_cast<std::int32_t>(cell / ni % nj + 1));
                            rows.set(2, static_cast<std::int32_t>(cell / (ni * nj) + 1));
                            if (!std::isnan(array->values[cell])) rows.set(3, array->values[cell]);
                            rows.endRow();
                          }
                          return cell < array->values.size();
                        });
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
