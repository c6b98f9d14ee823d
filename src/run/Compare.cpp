#include "Compare.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "../files/Recogniser.h"
#include "../frame/NumberText.h"
#include "../support/Pattern.h"
#include "../support/Session.h"
#include "../support/Text.h"
#include "RecordData.h"
#include "RecordPair.h"
#include "RunState.h"

namespace lumbarn {

namespace {

/// A difference as a row.
struct Difference {
  std::string kind, name, place;
  ElementPair values;
  double absolute = 0;  ///< infinite for texts, and for a number beside none
  double relative = 0;

  bool operator<(const Difference& other) const {
    return std::pair(absolute, relative) > std::pair(other.absolute, other.relative);
  }
};

/// What was found of one name.
struct NameTotal {
  std::string kind;
  std::int64_t count = 0;
  std::int64_t different = 0;
  double largest = 0;
  double sum = 0;  // of absolute differences
};

/// Takes pairs of values that are not equal, and keeps the largest differences and the totals of each name.
class DifferenceList {
 public:
  explicit DifferenceList(const Comparison& comparison) : comparison_(comparison) {}

  /// Values of a name that were compared.
  void count(const std::string& kind, const std::string& name, std::int64_t values) {
    NameTotal& total = totals_[name];
    total.kind = kind;
    total.count += values;
  }
  /// `place` gives the text of the place, where the difference is one to keep.
  template <class Place>
  void take(const std::string& kind, const std::string& name, const ElementPair& pair, Place&& place) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    double absolute = infinite, relative = infinite;
    if (pair.numbers && !std::isnan(pair.a) && !std::isnan(pair.b)) {
      const double larger = std::max(std::abs(pair.a), std::abs(pair.b));
      absolute = std::abs(pair.a - pair.b);
      relative = absolute / larger;  // not both are 0
      if (absolute <= std::max(comparison_.absolute, comparison_.relative * larger)) return;
    }
    NameTotal& total = totals_[name];
    ++total.different;
    if (std::isfinite(absolute)) {
      total.largest = std::max(total.largest, absolute);
      total.sum += absolute;
    }
    Difference one{kind, name, {}, pair, absolute, relative};
    if (comparison_.top == 0) return;
    if (largest_.size() == comparison_.top) {
      if (!(one < largest_.front())) return;
      std::pop_heap(largest_.begin(), largest_.end());
      largest_.pop_back();
    }
    one.place = place();
    largest_.push_back(std::move(one));
    std::push_heap(largest_.begin(), largest_.end());
  }

  bool equal() const {
    return std::ranges::all_of(totals_, [](const auto& total) { return total.second.different == 0; });
  }
  bool nothingCompared() const { return totals_.empty(); }

  Batch overview() const {
    BatchBuilder rows(schemaOf({{.name = "kind", .type = Type::Utf8, .nullable = false},
                                {.name = "name", .type = Type::Utf8, .nullable = false},
                                {.name = "count", .type = Type::Int64, .nullable = false},
                                {.name = "different", .type = Type::Int64, .nullable = false},
                                {.name = "max", .type = Type::Float64, .nullable = false},
                                {.name = "mean", .type = Type::Float64, .nullable = false}}),
                      all);
    for (const auto& [name, total] : totals_) {
      rows.set(0, total.kind);
      rows.set(1, toUtf8(name));
      rows.set(2, total.count);
      rows.set(3, total.different);
      rows.set(4, total.largest);
      rows.set(5, total.count > 0 ? total.sum / static_cast<double>(total.count) : 0.0);
      rows.endRow();
    }
    return rows.finish();
  }
  Batch largest() {
    std::sort_heap(largest_.begin(), largest_.end());
    const bool texts =
        std::ranges::any_of(largest_, [](const Difference& one) { return !one.values.numbers; });
    const Type values = texts ? Type::Utf8 : Type::Float64;
    BatchBuilder rows(schemaOf({{.name = "kind", .type = Type::Utf8, .nullable = false},
                                {.name = "name", .type = Type::Utf8, .nullable = false},
                                {.name = "step", .type = Type::Int32},
                                {.name = "date", .type = Type::Timestamp},
                                {.name = "place", .type = Type::Utf8, .nullable = false},
                                {.name = "a", .type = values},
                                {.name = "b", .type = values},
                                {.name = "abs", .type = Type::Float64},
                                {.name = "rel", .type = Type::Float64}}),
                      all);
    for (const Difference& one : largest_) add(rows, one, texts);
    return rows.finish();
  }

 private:
  static constexpr BatchLimits all{.bytes = std::numeric_limits<std::size_t>::max(),
                                   .rows = std::size_t{1} << 24};

  static std::shared_ptr<const Schema> schemaOf(Schema schema) {
    return std::make_shared<const Schema>(std::move(schema));
  }
  static void add(BatchBuilder& rows, const Difference& one, bool texts) {
    rows.set(0, one.kind);
    rows.set(1, toUtf8(one.name));
    rows.set(4, one.place);
    const auto put = [&](std::size_t column, double value, const std::string& text) {
      const double shown = one.values.single ? sameDigits(static_cast<float>(value)) : value;
      if (!texts) return rows.set(column, shown);
      rows.set(column, one.values.numbers ? NumberText(shown, false).view() : std::string_view(text));
    };
    put(5, one.values.a, one.values.textA);
    put(6, one.values.b, one.values.textB);
    if (std::isfinite(one.absolute)) {
      rows.set(7, one.absolute);
      rows.set(8, one.relative);
    }
    rows.endRow();
  }

  Comparison comparison_;
  std::map<std::string, NameTotal> totals_;
  std::vector<Difference> largest_;  // a heap, the smallest in front
};

/// Two files of records, compared record by record.
class FilePair {
 public:
  FilePair(const std::string& a, const std::string& b, const Comparison& comparison, Session& session)
      : a_(openRecordFile(a)), b_(openRecordFile(b)), comparison_(comparison), session_(session) {
    a_->attach(session);
    b_->attach(session);
  }

  /// False when something is missing on either side.
  bool compare(DifferenceList& differences) {
    indexB();
    while (next(*a_)) {
      const RecordHeader& header = a_->header();
      if (!wanted(header)) continue;
      const auto other = ofB_.find({header.keyword, a_->occurrence()});
      if (other == ofB_.end()) {
        missing_.add(*a_, header, a_->occurrence());
        continue;
      }
      const RecordHeader found = other->second;
      ofB_.erase(other);
      comparePair(found, differences);
      showProgress(*a_, session_);
    }
    for (const auto& [name, header] : ofB_) missing_.add(*b_, header, name.second);
    for (const Unequal* unequal : {&missing_, &size_}) unequal->tell(session_);
    return missing_.count == 0 && size_.count == 0;
  }

 private:
  /// Records that cannot be compared, told as one: of unequal grids every array would be told.
  struct Unequal {
    Message message;
    Diagnosis first{.message = message, .path = {}, .problem = {}, .keyword = {}};
    std::int64_t count = 0;

    void add(const RecordCursor& cursor, const RecordHeader& header, std::int64_t occurrence) {
      if (count++ > 0) return;
      first.path = cursor.path();
      first.keyword = header.keyword;
      first.occurrence = occurrence;
      first.offset = header.headerAt;
    }
    void tell(Session& session) const {
      if (count == 0) return;
      Diagnosis told = first;
      if (count > 1) told.action = fmt::format("so are {} other records", count - 1);
      session.diagnose(std::move(told));
    }
  };

  bool wanted(const RecordHeader& header) const {
    return comparison_.keywords.empty() ||
           std::ranges::any_of(comparison_.keywords, [&](const std::string& pattern) {
             return matchesPattern(header.keyword, pattern);
           });
  }
  bool next(RecordCursor& cursor) {
    if (session_.yield()) throw LoadCanceled();
    return nextRecord(
        cursor, [] { return std::string("compared the records before it"); },
        [&](const Diagnosis& damage) { session_.diagnose(damage); });
  }
  void indexB() {
    while (next(*b_)) {
      if (wanted(b_->header())) ofB_.emplace(std::pair(b_->header().keyword, b_->occurrence()), b_->header());
    }
  }
  void comparePair(const RecordHeader& other, DifferenceList& differences) {
    const RecordHeader& header = a_->header();
    if (!sameShape(header, other)) {
      const auto shape = [](const RecordHeader& one) {
        return fmt::format("{} {}", one.count, one.typeWord);
      };
      size_.first.expected = size_.count == 0 ? shape(other) : size_.first.expected;
      size_.first.found = size_.count == 0 ? shape(header) : size_.first.found;
      return size_.add(*a_, header, a_->occurrence());
    }
    b_->setCurrent(other);
    differences.count("record", header.keyword, header.count);
    visitUnequal(*a_, *b_, session_, [&](const ElementPair& pair) {
      differences.take("record", header.keyword, pair, [&] {
        return fmt::format("occurrence {}, element {}", a_->occurrence(), pair.element + 1);
      });
    });
  }

  std::unique_ptr<RecordCursor> a_;
  std::unique_ptr<RecordCursor> b_;
  const Comparison& comparison_;
  Session& session_;
  std::map<std::pair<std::string, std::int64_t>, RecordHeader> ofB_;  // not met in a yet
  Unequal missing_{Message::CompareMissing};
  Unequal size_{Message::CompareSize};
};

void requireSameKind(const std::string& a, const std::string& b) {
  const FileKind kinds[] = {recogniseFile(a).kind, recogniseFile(b).kind};
  if (kinds[0] != kinds[1] && kinds[0] != FileKind::Unknown && kinds[1] != FileKind::Unknown)
    throwRefused(b, fmt::format("is of another type than {}: {}, {}", a, nameOf(kinds[1]), nameOf(kinds[0])));
}

}  // namespace

Differences compareFiles(const std::string& a, const std::string& b, const Comparison& comparison,
                         const ReadOptions& options) {
  try {
    StreamContext context(options);
    FilePair files(a, b, comparison, context.session());
    requireSameKind(a, b);
    DifferenceList differences(comparison);
    const bool complete = files.compare(differences);
    if (const auto& damage = context.worst(); damage && !options.keepPartial)
      throw Error(Error::Kind::Damaged, *damage);
    if (differences.nothingCompared() && complete)
      throwNotFound(a, "nothing of it is to be compared", "", {});
    return {differences.overview(), differences.largest(), complete && differences.equal()};
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
