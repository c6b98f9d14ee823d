#include "run/Compare.h"

#include <charconv>

#include <fmt/format.h>

#include "Answer.h"
#include "Commands.h"

namespace lumbarn::cli {
namespace {

struct CompareOptions {
  std::string a;
  std::string b;
  Comparison comparison;
  TimeOptions time;
  std::string absolute;
  std::string relative;
  std::int32_t top = 20;
  bool overview = false;
  OutputOptions output;
};

double toleranceFrom(const std::string& name, const std::string& text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !(value >= 0))
    throw Failure(Usage, fmt::format("{} needs a number from 0, not \"{}\"", name, text));
  return value;
}

ExitStatus compareBoth(const CompareOptions& options, Console& console) {
  Comparison comparison = options.comparison;
  if (!options.absolute.empty()) comparison.absolute = toleranceFrom("--abs", options.absolute);
  if (!options.relative.empty()) comparison.relative = toleranceFrom("--rel", options.relative);
  comparison.top = static_cast<std::size_t>(options.top);
  comparison.time = options.time.selection();
  const Differences found = compare(options.a, options.b, comparison, asking(console));
  auto files = Run::open(options.a).paths();
  for (const std::string& path : Run::open(options.b).paths()) files.push_back(path);
  const ExitStatus written = writeAnswer(streamOf(options.overview ? found.overview : found.largest),
                                         options.output, files, console);
  return found.equal ? written : Different;
}

}  // namespace

void addCompare(CommandLine& line) {
  Subcommand command(line, "compare", "Show in what two runs, or two files of records, differ");
  CompareOptions& options = command.performs(compareBoth);
  command.path(options.a, "A run, or a record file", "A");
  command.path(options.b, "Another run, or another file of the same type", "B");
  command.value("--abs", options.absolute, "X", "Numbers that differ by X or less are equal");
  command.value("--rel", options.relative, "X", "So are those that differ by X or less of the larger one");
  command.repeated("--vectors", options.comparison.vectors, "PATTERNS",
                   "Vectors of the summaries to compare; all if neither these nor arrays are given");
  command.list("--array", options.comparison.keywords, "NAMES",
               "Arrays of the restart files to compare, or the only records; with * and ?");
  command.time(options.time);
  command.ordinal("--top", options.top, "Show the N largest differences; 20 if not given");
  command.flag("--overview", options.overview, "Show a line for each name instead");
  command.output(options.output);
  command.footer(
      "Runs are compared at rows and steps of the same date. Two files are compared record by record, "
      "unless\n"
      "--vectors or a time is given. Exit status: 0 equal, 4 different, 1 one of them cannot be read. "
      "Example:\n"
      "  lumbarn compare --abs 0.01 --array PRESSURE BEFORE.UNRST AFTER.UNRST");
}

}  // namespace lumbarn::cli
