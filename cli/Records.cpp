#include <memory>

#include <fmt/format.h>

#include "Commands.h"
#include "Output.h"
#include "PathArgument.h"
#include "RecordData.h"
#include "files/Recogniser.h"

namespace lumbarn::cli {
namespace {

struct RecordsOptions {
  std::string path;
  bool stats = false;
  OutputOptions output;
};

void putExtreme(TableWriter& table, ElementType type, double value) {
  if (type == ElementType::Single) {
    table.number(static_cast<float>(value));
  } else if (type == ElementType::Double) {
    table.number(value);
  } else {
    table.number(static_cast<std::int64_t>(value));
  }
}

class RecordList {
 public:
  RecordList(RecordCursor& cursor, Console& console, const RecordsOptions& options, std::ostream& out)
      : cursor_(cursor), console_(console), stats_(options.stats) {
    std::vector<Column> columns{
        {"keyword", false, 8}, {"type", false, 4}, {"count", true, 10}, {"offset", true, 12}};
    if (stats_) columns.insert(columns.end(), {{"min", true, 14}, {"max", true, 14}});
    table_ = TableWriter::make(options.output.format, std::move(columns), out);
  }

  /// Writes a row for each whole record.
  ExitStatus write() {
    while (next()) {
      console_.checkCancelled();
      row();
      ++rows_;
      if (rows_ % 256 == 0 || stats_) showProgress(cursor_, console_);
    }
    table_->finish();
    return rows_ == 0 && status_ != Done ? Unreadable : status_;
  }

 private:
  /// Moves to the next record, over damage where there is one behind it.
  bool next() {
    while (true) {
      try {
        return cursor_.next();
      } catch (BadRecord& damage) {
        status_ = Partial;
        const bool more = continueBehind(
            cursor_, damage.diagnosis(),
            rows_ == 0 ? "nothing can be listed" : fmt::format("listed the {} records before it", rows_));
        tell(damage.diagnosis());
        if (!more) return false;
      }
    }
  }
  void row() {
    const RecordHeader& header = cursor_.header();
    std::optional<Extremes> range;
    if (stats_) {
      try {
        range = readExtremes(cursor_, console_);
      } catch (const BadRecord& damage) {
        status_ = Partial;
        Diagnosis left = damage.diagnosis();
        left.action = "left min and max of this record out";
        tell(left);
      }
    }
    table_->text(header.keyword);
    table_->text(header.typeWord);
    table_->number(header.count);
    table_->number(header.headerAt);
    if (!stats_) return;
    if (range) {
      putExtreme(*table_, range->type, range->smallest);
      putExtreme(*table_, range->type, range->largest);
    } else {
      table_->empty();
      table_->empty();
    }
  }
  void tell(const Diagnosis& diagnosis) {
    table_->flush();
    console_.tell(diagnosis);
  }

  RecordCursor& cursor_;
  Console& console_;
  bool stats_;
  std::unique_ptr<TableWriter> table_;
  std::int64_t rows_ = 0;
  ExitStatus status_ = Done;
};

ExitStatus listRecords(const RecordsOptions& options, Console& console) {
  const std::string path = oneFile(options.path);
  std::string why;
  const auto cursor = openRecords(path, why);
  if (!cursor) {
    const Recognised found = recogniseFile(path);
    console.tell(found.problem.value_or(Diagnosis{.message = Message::FileType,
                                                  .path = path,
                                                  .problem = "not a record file",
                                                  .offset = 0,
                                                  .expected = "a record header",
                                                  .found = std::string(nameOf(found.kind))}));
    return Unreadable;
  }
  cursor->attach(console.session());
  Output output(options.output, console.out(), std::span(&path, 1));
  const ExitStatus status = RecordList(*cursor, console, options, output.stream()).write();
  if (status != Unreadable) output.commit();
  return status;
}

}  // namespace

void addRecords(CommandLine& line) {
  Subcommand command(line, "records", "List every record of a file: keyword, type, count, offset");
  RecordsOptions& options = command.performs(listRecords);
  command.path(options.path, "Any record file, a damaged one too", "FILE");
  command.flag("--stats", options.stats, "Read the data too and give the smallest and largest number");
  command.output(options.output);
  command.footer("Offsets are bytes, counted from 0. Example:\n  lumbarn records --stats RUN.UNRST");
}

}  // namespace lumbarn::cli
