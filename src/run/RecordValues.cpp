#include <algorithm>
#include <set>
#include <variant>

#include <fmt/format.h>

#include "../frame/NumberText.h"
#include "../support/Pattern.h"
#include "../support/Session.h"
#include "../support/Text.h"
#include "RecordData.h"
#include "Records.h"
#include "RunState.h"

namespace lumbarn {

namespace {

bool hasValues(const RecordHeader& header) {
  return header.type != ElementType::None && header.type != ElementType::Unknown;
}

/// Tells which records are wanted, walking from header to header.
class WantedRecords {
 public:
  explicit WantedRecords(const RecordSelection& selection) : selection_(selection) {
    literal_ = std::ranges::none_of(selection.keywords, [](const auto& word) { return hasWildcard(word); });
  }

  bool operator()(const RecordCursor& cursor) const {
    if (selection_.occurrence > 0 && cursor.occurrence() != selection_.occurrence) return false;
    return std::ranges::any_of(selection_.keywords, [&](const std::string& pattern) {
      return matchesPattern(cursor.header().keyword, pattern);
    });
  }
  /// No record behind this many wanted ones can be another.
  bool complete(std::int64_t found) const {
    return literal_ && selection_.occurrence > 0 &&
           found >= static_cast<std::int64_t>(selection_.keywords.size());
  }
  std::int64_t firstElement() const { return selection_.first - 1; }
  std::int64_t endOf(const RecordHeader& header) const {
    return selection_.last < 0 ? header.count : std::min(header.count, selection_.last);
  }
  const RecordSelection& selection() const { return selection_; }

 private:
  RecordSelection selection_;
  bool literal_ = false;
};

/// What the headers of a file say about the records that are wanted.
struct Overview {
  std::set<ElementType> types;
  std::set<std::string> keywords;  // of the file
  std::set<std::string> unreadable;
  std::int64_t found = 0;
  std::int64_t elements = 0;
};

Overview lookOver(const std::string& path, const WantedRecords& wanted, Session& session) {
  const auto cursor = openRecordFile(path);
  cursor->attach(session);
  Overview seen;
  // The walk that reads the data reports the damage.
  while (!wanted.complete(seen.found) &&
         nextRecord(
             *cursor, [] { return std::string(); }, [](const Diagnosis&) {})) {
    const RecordHeader& header = cursor->header();
    seen.keywords.insert(header.keyword);
    if (!wanted(*cursor)) continue;
    ++seen.found;
    if (header.type == ElementType::Unknown) seen.unreadable.insert(header.keyword);
    if (!hasValues(header)) continue;
    seen.types.insert(header.type == ElementType::Short ? ElementType::Integer : header.type);
    seen.elements += std::max<std::int64_t>(0, wanted.endOf(header) - wanted.firstElement());
  }
  return seen;
}

Type typeOf(const std::set<ElementType>& types) {
  if (types.size() != 1) return Type::Utf8;
  switch (*types.begin()) {
    case ElementType::Integer:
      return Type::Int32;
    case ElementType::Single:
      return Type::Float32;
    case ElementType::Double:
      return Type::Float64;
    case ElementType::Logical:
      return Type::Bool;
    default:
      return Type::Utf8;
  }
}

/// Throws when nothing is selected, and reports keywords that the file does not have.
void requireValues(const Overview& seen, const std::string& path, const WantedRecords& wanted,
                   Session& session) {
  const RecordSelection& selection = wanted.selection();
  const std::vector<std::string> names(seen.keywords.begin(), seen.keywords.end());
  std::vector<std::string> missing;
  for (const std::string& word : selection.keywords) {
    if (std::ranges::none_of(names, [&](const auto& name) { return matchesPattern(name, word); }) &&
        (!hasWildcard(word) || seen.found == 0))
      missing.push_back(word);
  }
  if (seen.found == 0 && !missing.empty())
    throwNotFound(path, fmt::format("has no record \"{}\"", missing.front()), missing.front(), names);
  if (seen.found == 0)
    throwNotFound(path, fmt::format("has no occurrence {} of it", selection.occurrence), "", {});
  // A search that ended early has not seen all keywords.
  for (const std::string& word : missing) {
    if (!wanted.complete(seen.found))
      session.diagnose({.message = Message::RequestMissing,
                        .path = path,
                        .problem = fmt::format("has no record \"{}\"", word)});
  }
  for (const std::string& word : seen.unreadable) {
    session.diagnose({.message = Message::RequestMissing,
                      .path = path,
                      .problem = "its data are of a type that is not known",
                      .keyword = word});
  }
  if (seen.elements == 0 && selection.first > 1)
    throwNotFound(path, fmt::format("has no element {} in what was asked for", selection.first), "", {});
}

class RecordRows {
 public:
  RecordRows(const std::string& path, WantedRecords wanted, Type type, std::shared_ptr<StreamContext> context)
      : context_(std::move(context)),
        cursor_(openRecordFile(path)),
        wanted_(std::move(wanted)),
        texts_(type == Type::Utf8) {
    cursor_->attach(session());
  }

  bool fill(BatchBuilder& rows) {
    while (!rows.full()) {
      if (element_ == part_.first + static_cast<std::int64_t>(part_.size) && !nextPart()) return false;
      for (; !rows.full() && element_ < part_.first + static_cast<std::int64_t>(part_.size); ++element_)
        add(rows);
    }
    return true;
  }

 private:
  /// Elements of the current record that were read.
  struct Part {
    std::int64_t first = 0;
    std::size_t size = 0;
    std::variant<std::vector<std::int32_t>, std::vector<float>, std::vector<double>,
                 std::vector<std::int16_t>, std::string>
        values;
  };

  Session& session() { return context_->session(); }

  bool nextPart() {
    while (true) {
      if (session().yield()) throw LoadCanceled();
      if (element_ >= end_ && !nextWanted()) return false;
      try {
        read();
        if (part_.size > 0) return true;
      } catch (BadRecord& damage) {
        damage.diagnosis().action = fmt::format("left its elements from {} on out", element_ + 1);
        session().diagnose(damage.diagnosis());
        end_ = element_;
        part_ = {.first = element_};
      }
    }
  }

  bool nextWanted() {
    while (!wanted_.complete(found_) &&
           nextRecord(
               *cursor_, [&] { return fmt::format("found {} records before it", found_); },
               [&](const Diagnosis& damage) { session().diagnose(damage); })) {
      const RecordHeader& header = cursor_->header();
      if (!wanted_(*cursor_)) continue;
      ++found_;
      if (!hasValues(header) || wanted_.endOf(header) <= wanted_.firstElement()) continue;
      keyword_ = toUtf8(header.keyword);
      element_ = wanted_.firstElement();
      end_ = wanted_.endOf(header);
      return true;
    }
    return false;
  }

  void read() {
    const RecordHeader& header = cursor_->header();
    part_.first = element_;
    part_.size = 0;
    const auto size = static_cast<std::size_t>(std::min(end_ - element_, partElements));
    switch (header.type) {
      case ElementType::Single:
        return readInto<std::vector<float>>(size);
      case ElementType::Double:
        return readInto<std::vector<double>>(size);
      case ElementType::Logical:
        part_.values = std::vector<std::int16_t>(size);
        cursor_->readLogicals(std::get<std::vector<std::int16_t>>(part_.values), element_);
        break;
      case ElementType::Text:
        part_.values = std::string(size * static_cast<std::size_t>(header.width), ' ');
        cursor_->readText(std::get<std::string>(part_.values), element_);
        break;
      default:
        return readInto<std::vector<std::int32_t>>(size);
    }
    part_.size = size;
    showProgress(*cursor_, session());
  }
  template <class Values>
  void readInto(std::size_t size) {
    part_.values = Values(size);
    cursor_->read(std::get<Values>(part_.values), element_);
    part_.size = size;
    showProgress(*cursor_, session());
  }

  void add(BatchBuilder& rows) {
    rows.set(0, keyword_);
    rows.set(1, cursor_->occurrence());
    rows.set(2, cursor_->header().headerAt);
    rows.set(3, element_ + 1);
    const auto i = static_cast<std::size_t>(element_ - part_.first);
    std::visit([&](const auto& values) { addValue(rows, values, i); }, part_.values);
    rows.endRow();
  }
  template <class Number>
  void addValue(BatchBuilder& rows, const std::vector<Number>& values, std::size_t i) {
    if (!texts_) return rows.set(4, values[i]);
    rows.set(4, NumberText(values[i], false).view());
  }
  void addValue(BatchBuilder& rows, const std::vector<std::int16_t>& values, std::size_t i) {
    if (!texts_) return rows.set(4, values[i] != 0);
    rows.set(4, std::string_view(values[i] != 0 ? "true" : "false"));
  }
  void addValue(BatchBuilder& rows, const std::string& values, std::size_t i) {
    const auto width = static_cast<std::size_t>(cursor_->header().width);
    rows.set(4, toUtf8(trimRight(std::string_view(values).substr(i * width, width))));
  }

  std::shared_ptr<StreamContext> context_;
  std::unique_ptr<RecordCursor> cursor_;
  WantedRecords wanted_;
  bool texts_;
  std::int64_t found_ = 0;
  std::string keyword_;
  std::int64_t element_ = 0;  // the next one, from 0
  std::int64_t end_ = 0;      // of those that are wanted of the current record
  Part part_;
};

}  // namespace

Stream recordValues(const RecordSelection& selection, const ReadOptions& options) {
  try {
    auto context = std::make_shared<StreamContext>(options);
    const std::string path = recordFile(selection.file);
    if (selection.first < 1 || (selection.last >= 0 && selection.last < selection.first))
      throwRefused(path, "elements are counted from 1, and the last is not before the first");
    const WantedRecords wanted(selection);
    const Overview seen = lookOver(path, wanted, context->session());
    requireValues(seen, path, wanted, context->session());
    const Type type = typeOf(seen.types);
    auto values = std::make_shared<RecordRows>(path, wanted, type, context);
    return streamOfRows({{.name = "keyword", .type = Type::Utf8, .nullable = false},
                         {.name = "occurrence", .type = Type::Int64, .nullable = false},
                         {.name = "offset", .type = Type::Int64, .nullable = false},
                         {.name = "index", .type = Type::Int64, .nullable = false},
                         {.name = "value", .type = type}},
                        std::move(context), [values](BatchBuilder& rows) { return values->fill(rows); });
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
