#include "run/Records.h"

#include <charconv>

#include <fmt/format.h>

#include "Answer.h"
#include "Commands.h"

namespace lumbarn::cli {
namespace {

struct RecordsOptions {
  RecordSelection selection;
  bool stats = false;
  std::int32_t occurrence = 0;
  std::string range;
  OutputOptions output;
};

/// Takes "9:12", "9:", ":12" or "9".
void setRange(RecordSelection& selection, const std::string& text) {
  const auto number = [&](std::string_view part, std::int64_t empty) {
    if (part.empty()) return empty;
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), value);
    if (error != std::errc() || end != part.data() + part.size() || value < 1)
      throw Failure(Usage, fmt::format("--range is given as 9:12, 9:, :12 or 9, not \"{}\"", text));
    return value;
  };
  const std::string_view all = text;
  const auto colon = all.find(':');
  selection.first = number(all.substr(0, colon), 1);
  selection.last = colon == all.npos ? selection.first : number(all.substr(colon + 1), -1);
  if (selection.last >= 0 && selection.last < selection.first)
    throw Failure(Usage, fmt::format("--range {} ends before it begins", text));
}

ExitStatus listRecords(const RecordsOptions& options, Console& console) {
  RecordSelection selection = options.selection;
  const bool show = !selection.keywords.empty();
  if (show && options.stats) throw Failure(Usage, "--stats and --show cannot be given together");
  if (!show && (options.occurrence > 0 || !options.range.empty()))
    throw Failure(Usage, "--occurrence and --range go with --show");
  selection.file = recordFile(selection.file);
  selection.occurrence = options.occurrence;
  if (!options.range.empty()) setRange(selection, options.range);
  const ReadOptions read = asking(console);
  return writeAnswer(show            ? recordValues(selection, read)
                     : options.stats ? recordStatistics(selection.file, read)
                                     : records(selection.file, read),
                     options.output, std::span(&selection.file, 1), console);
}

}  // namespace

void addRecords(CommandLine& line) {
  Subcommand command(line, "records", "List every record of a file, or show the data of some");
  RecordsOptions& options = command.performs(listRecords);
  command.path(options.selection.file, "Any record file, a damaged one too", "FILE");
  command.flag("--stats", options.stats, "Read the data too and give the smallest and largest number");
  command.list("--show", options.selection.keywords, "KEYWORDS",
               "Show the data of records of these names, in which * and ? stand for others");
  command.ordinal("--occurrence", options.occurrence, "With --show: only the N-th record of each name");
  command.value("--range", options.range, "A:B", "With --show: only these elements, counted from 1");
  command.output(options.output);
  command.footer(
      "Offsets are bytes, counted from 0. Example:\n  lumbarn records --stats RUN.UNRST\n"
      "  lumbarn records --show INTEHEAD --occurrence 1 --range 65:67 RUN.UNRST");
}

}  // namespace lumbarn::cli
