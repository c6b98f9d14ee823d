#include "Records.h"

#include <utility>

#include <fmt/format.h>

#include "../files/Families.h"
#include "../files/Folder.h"
#include "../support/Session.h"
#include "../support/Text.h"
#include "RecordData.h"
#include "Run.h"
#include "RunState.h"

namespace lumbarn {

namespace {

class RecordList {
 public:
  RecordList(const std::string& path, bool statistics, std::shared_ptr<StreamContext> context)
      : context_(std::move(context)), cursor_(openRecordFile(path)), statistics_(statistics) {
    cursor_->attach(session());
    more_ = next();
    if (!more_ && context_->worst()) throw Error(Error::Kind::Damaged, *context_->worst());
  }

  /// Adds a row for each whole record.
  bool fill(BatchBuilder& rows) {
    for (; more_ && !rows.full(); more_ = next()) {
      if (session().yield()) throw LoadCanceled();
      add(rows);
      ++records_;
      if (records_ % 256 == 0 || statistics_) showProgress(*cursor_, session());
    }
    return more_;
  }

 private:
  Session& session() { return context_->session(); }
  bool next() {
    return nextRecord(
        *cursor_,
        [&] {
          return records_ == 0 ? std::string("nothing can be listed")
                               : fmt::format("listed the {} records before it", records_);
        },
        [&](const Diagnosis& damage) { session().diagnose(damage); });
  }
  void add(BatchBuilder& rows) {
    const RecordHeader& header = cursor_->header();
    rows.set(0, toUtf8(header.keyword));
    rows.set(1, toUtf8(header.typeWord));
    rows.set(2, header.count);
    rows.set(3, header.headerAt);
    if (statistics_) addRange(rows);
    rows.endRow();
  }
  void addRange(BatchBuilder& rows) {
    try {
      const auto range = readExtremes(*cursor_, session());
      if (!range) return;
      const bool single = range->type == ElementType::Single;
      const auto shown = [&](double value) { return single ? sameDigits(static_cast<float>(value)) : value; };
      rows.set(4, shown(range->smallest));
      rows.set(5, shown(range->largest));
    } catch (BadRecord& damage) {
      damage.diagnosis().action = "left min and max of this record out";
      session().diagnose(damage.diagnosis());
    }
  }

  std::shared_ptr<StreamContext> context_;
  std::unique_ptr<RecordCursor> cursor_;
  bool statistics_;
  bool more_ = false;
  std::int64_t records_ = 0;
};

Stream list(const std::string& path, bool statistics, const ReadOptions& options) {
  try {
    auto context = std::make_shared<StreamContext>(options);
    auto records = std::make_shared<RecordList>(recordFile(path), statistics, context);
    Schema schema{{.name = "keyword", .type = Type::Utf8, .nullable = false},
                  {.name = "type", .type = Type::Utf8, .nullable = false},
                  {.name = "count", .type = Type::Int64, .nullable = false},
                  {.name = "offset", .type = Type::Int64, .nullable = false}};
    if (statistics) {
      schema.push_back({.name = "min", .type = Type::Float64});
      schema.push_back({.name = "max", .type = Type::Float64});
    }
    return streamOfRows(std::move(schema), std::move(context),
                        [records](BatchBuilder& rows) { return records->fill(rows); });
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace

std::string recordFile(const std::string& path) {
  if (isFile(path)) return path;
  const Run run = Run::open(path);
  const RunFamily& family = run.state().family();
  if (const RunMember* member = family.givenMember()) return member->path;
  auto files = run.paths();
  if (files.size() == 1) return std::move(files.front());
  std::string all;
  for (const std::string& file : files) all += (all.empty() ? "" : ", ") + file;
  throw Error(Error::Kind::BadRequest,
              {.message = Message::RequestRefused,
               .path = path,
               .problem = "is a run, name one of its files: " + all},
              std::move(files));
}

Stream records(const std::string& file, const ReadOptions& options) { return list(file, false, options); }

Stream recordStatistics(const std::string& file, const ReadOptions& options) {
  return list(file, true, options);
}

}  // namespace lumbarn
