#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include "../support/Session.h"
#include "../support/Text.h"
#include "../text/DeckRecords.h"
#include "../vocabulary/Units.h"
#include "Deck.h"
#include "KeywordItems.h"

namespace lumbarn {

namespace {

constexpr std::size_t placeColumns = 3;     // occurrence, file, line
constexpr std::int64_t mostColumns = 4096;  // of items without names

struct QuantityRow {
  std::string_view name;
  Quantity quantity;
};
constexpr QuantityRow quantityRows[] = {
    {"time", Quantity::Time},
    {"length", Quantity::Length},
    {"pressure", Quantity::Pressure},
    {"density", Quantity::Density},
    {"viscosity", Quantity::Viscosity},
    {"compressibility", Quantity::Compressibility},
    {"liquid_rate", Quantity::LiquidRate},
    {"gas_rate", Quantity::GasRate},
    {"reservoir_rate", Quantity::ReservoirRate},
    {"reservoir_volume", Quantity::ArrayPoreVolume},
    {"transmissibility", Quantity::ConnectionFactor},
    {"permeability", Quantity::ArrayPermeability},
    {"permeability_thickness", Quantity::PermeabilityThickness},
};
std::string unitText(std::string_view quantity, std::int32_t system) {
  for (const QuantityRow& row : quantityRows) {
    if (row.name == quantity) return std::string(trim(unitOf(row.quantity, system)));
  }
  return {};
}

Field fieldOf(const ItemInfo& item, std::int32_t system) {
  const Type type = item.kind == ItemInfo::Kind::Whole    ? Type::Int32
                    : item.kind == ItemInfo::Kind::Number ? Type::Float64
                                                          : Type::Utf8;
  Field field{.name = std::string(item.name), .type = type, .unit = unitText(item.unit, system)};
  if (!item.otherwise.empty()) field.metadata.emplace_back("default", item.otherwise);
  return field;
}

/// Reads the records of some keywords into rows.
class RecordRows {
 public:
  RecordRows(const Deck& deck, std::vector<std::size_t> places, std::shared_ptr<StreamContext> context)
      : deck_(deck), places_(std::move(places)), context_(std::move(context)) {
    items_ = itemsOf(deck_.keywords()[places_.front()].name);
    const std::int32_t system = deck_.unitSystem();
    if (items_) {
      for (const ItemInfo& item : items_->first) schema_.push_back(fieldOf(item, system));
      for (const ItemInfo& item : items_->items) schema_.push_back(fieldOf(item, system));
    }
    if (!items_ || items_->many) addColumns();
  }

  Schema schema() const {
    auto paths = std::make_shared<std::vector<std::string>>();
    for (const DeckFile& file : deck_.files().all()) paths->push_back(toUtf8(file.path));
    Schema all{{.name = "occurrence", .type = Type::Int32, .nullable = false},
               {.name = "file", .type = Type::Dictionary, .nullable = false, .dictionary = paths},
               {.name = "line", .type = Type::Int64, .nullable = false}};
    all.insert(all.end(), schema_.begin(), schema_.end());
    return all;
  }

  bool fill(BatchBuilder& rows) {
    while (place_ < places_.size()) {
      const DeckKeyword& keyword = deck_.keywords()[places_[place_]];
      if (!records_) {
        records_.emplace(deck_.files(), keyword);
        head_.clear();
        inFirst_ = items_ && !items_->first.empty();
      }
      while (records_->next(record_)) {
        if (context_->session().yield()) throw LoadCanceled();
        add(keyword, rows);
        if (rows.full()) return true;
      }
      records_.reset();
      ++place_;
    }
    return false;
  }

 private:
  /// Columns for as many items as the longest record has, behind those with names.
  void addColumns() {
    std::int64_t most = 0;
    for (const std::size_t place : places_) {
      DeckRecords records(deck_.files(), deck_.keywords()[place]);
      DeckRecord record;
      bool first = items_ && !items_->first.empty();
      while (records.next(record)) {
        if (!std::exchange(first, false)) most = std::max(most, record.size());
      }
    }
    most = std::min(most, mostColumns);
    if (!items_) {
      for (std::int64_t i = 1; i <= most; ++i)
        schema_.push_back({.name = "item" + std::to_string(i), .type = Type::Utf8});
      return;
    }
    const Field last = schema_.back();
    schema_.pop_back();
    const auto named = static_cast<std::int64_t>(items_->items.size()) - 1;
    for (std::int64_t i = 1; i <= std::max<std::int64_t>(most - named, 1); ++i) {
      schema_.push_back(last);
      schema_.back().name += std::to_string(i);
    }
  }

  void add(const DeckKeyword& keyword, BatchBuilder& rows) {
    rows.set(0, static_cast<std::int32_t>(place_ + 1));
    rows.set(1, static_cast<std::int32_t>(record_.file));
    rows.set(2, record_.line);
    const std::size_t front = items_ ? items_->first.size() : 0;
    if (std::exchange(inFirst_, false)) {
      set(keyword, rows, 0, front);
      head_ = record_[0].value_or("");
    } else {
      if (front > 0 && !head_.empty()) rows.set(placeColumns, toUtf8(head_));
      set(keyword, rows, front, schema_.size() - front);
    }
    rows.endRow();
  }

  /// Sets `count` columns from `first` on to the values of the record.
  void set(const DeckKeyword& keyword, BatchBuilder& rows, std::size_t first, std::size_t count) {
    std::size_t column = first;
    const std::size_t end = first + count;
    for (const DeckItem& item : record_.items) {
      for (std::int64_t i = 0; i < item.count; ++i, ++column) {
        if (column >= end) return report(keyword, item, fmt::format("{} items", count), "ignored the others");
        if (item.given) setValue(keyword, rows, column, item);
      }
    }
  }

  void setValue(const DeckKeyword& keyword, BatchBuilder& rows, std::size_t column, const DeckItem& item) {
    const std::string_view text = record_.value(item);
    const Type type = schema_[column].type;
    if (type == Type::Utf8) return rows.set(placeColumns + column, toUtf8(text));
    const auto number = deckNumber(trim(text));
    if (!number) return report(keyword, item, "a number", "skipped this value");
    if (type == Type::Float64) return rows.set(placeColumns + column, *number);
    const bool whole =
        *number == std::floor(*number) && std::abs(*number) <= std::numeric_limits<std::int32_t>::max();
    if (!whole) return report(keyword, item, "a whole number", "skipped this value");
    rows.set(placeColumns + column, static_cast<std::int32_t>(*number));
  }

  void report(const DeckKeyword& keyword, const DeckItem& item, std::string expected, std::string action) {
    context_->session().diagnose({.message = Message::DeckValue,
                                  .path = deck_.files()[record_.file].path,
                                  .keyword = keyword.name,
                                  .offset = item.offset,
                                  .line = item.line,
                                  .expected = std::move(expected),
                                  .found = toUtf8(record_.value(item)),
                                  .action = std::move(action)});
  }

  Deck deck_;
  std::vector<std::size_t> places_;
  std::shared_ptr<StreamContext> context_;
  const KeywordItems* items_ = nullptr;
  Schema schema_;
  std::size_t place_ = 0;
  std::optional<DeckRecords> records_;
  DeckRecord record_;
  bool inFirst_ = false;
  std::string head_;  // first item of the first record
};

}  // namespace

std::int32_t Deck::unitSystem() const {
  for (const DeckKeyword& keyword : keywords()) {
    if (keyword.section > 1) break;
    if (keyword.name == "METRIC") return metricUnits;
    if (keyword.name == "FIELD") return fieldUnits;
    if (keyword.name == "LAB") return laboratoryUnits;
    if (keyword.name == "PVT-M") return atmosphereUnits;
  }
  return metricUnits;
}

Stream Deck::records(const std::string& name, const std::string& section, const ReadOptions& options) const {
  std::vector<std::size_t> places = chosen({.keywords = {name}, .section = section});
  for (const std::size_t place : places) {
    const std::string& other = keywords()[place].name;
    if (other == keywords()[places.front()].name) continue;
    throw Error(Error::Kind::BadRequest,
                {.message = Message::RequestRefused,
                 .path = path(),
                 .problem = fmt::format("{} means {} and {}; a table has the records of one keyword", name,
                                        keywords()[places.front()].name, other)});
  }
  auto context = std::make_shared<StreamContext>(options);
  auto rows = std::make_shared<RecordRows>(*this, std::move(places), context);
  Schema schema = rows->schema();
  makeNamesUnique(schema);
  return streamOfRows(std::move(schema), std::move(context),
                      [rows](BatchBuilder& out) { return rows->fill(out); });
}

Stream Deck::grep(const std::string& text, const ReadOptions& options) const {
  if (text.empty()) {
    throw Error(
        Error::Kind::BadRequest,
        {.message = Message::RequestRefused, .path = path(), .problem = "there is no text to look for"});
  }
  auto paths = std::make_shared<std::vector<std::string>>();
  for (const DeckFile& file : files().all()) paths->push_back(toUtf8(file.path));
  struct Search {
    Deck deck;
    std::string text;
    std::shared_ptr<StreamContext> context;
    std::uint32_t file = 0;
    std::unique_ptr<TextWindow> window{};
    std::uint64_t at = 0;
    std::int64_t line = 0;
  };
  auto context = std::make_shared<StreamContext>(options);
  auto search = std::make_shared<Search>(Search{*this, lower(text), context});
  Schema schema{{.name = "file", .type = Type::Dictionary, .nullable = false, .dictionary = paths},
                {.name = "line", .type = Type::Int64, .nullable = false},
                {.name = "text", .type = Type::Utf8, .nullable = false}};
  return streamOfRows(std::move(schema), std::move(context), [search](BatchBuilder& rows) {
    Search& s = *search;
    for (; s.file < s.deck.files().size(); ++s.file, s.window.reset()) {
      if (s.deck.files()[s.file].state != DeckFile::State::Read) continue;
      if (!s.window) {
        s.window = std::make_unique<TextWindow>(s.deck.files().open(s.file));
        s.at = 0;
        s.line = 0;
      }
      while (s.at < s.window->size()) {
        if (rows.full()) return true;
        const std::string_view all = s.window->line(s.at);
        s.at += all.size();
        ++s.line;
        if (s.line % 4096 == 0 && s.context->session().yield()) throw LoadCanceled();
        if (lower(all).find(s.text) == std::string::npos) continue;
        rows.set(0, static_cast<std::int32_t>(s.file));
        rows.set(1, s.line);
        rows.set(2, toUtf8(trim(all)));
        rows.endRow();
      }
    }
    return false;
  });
}

}  // namespace lumbarn
