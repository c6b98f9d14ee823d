#include "Subcommand.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "support/Text.h"

namespace lumbarn::cli {
namespace {

/// Takes a whole number, or one from 1, to a variable. The parser's own message names neither.
template <class Number>
void addNumber(CLI::App& command, const std::string& name, Number& number, const std::string& word,
               const std::string& description, bool fromOne) {
  const auto store = [&number, name, fromOne](const std::string& text) {
    using Limits = std::numeric_limits<std::int32_t>;
    const auto given = toInteger(text);
    if (!given || *given < (fromOne ? 1 : Limits::min()) || *given > Limits::max()) {
      throw CLI::ValidationError(
          fmt::format("{} needs a {}, not \"{}\"", name, fromOne ? "number from 1" : "whole number", text));
    }
    number = static_cast<std::int32_t>(*given);
  };
  command.add_option_function<std::string>(name, store, description)->option_text(word);
}

Format formatNamed(const std::string& word) {
  if (equalNoCase(word, "table")) return Format::Table;
  if (equalNoCase(word, "csv")) return Format::Csv;
  if (equalNoCase(word, "json")) return Format::Json;
  if (equalNoCase(word, "ndjson")) return Format::Ndjson;
  if (equalNoCase(word, "arrow")) return Format::ArrowFile;
  throw CLI::ValidationError(fmt::format("--format is table, csv, json, ndjson or arrow, not \"{}\"", word));
}

Units unitsNamed(const std::string& word) {
  constexpr std::pair<std::string_view, Units> systems[] = {
      {"metric", Units::Metric}, {"field", Units::Field}, {"lab", Units::Lab}, {"si", Units::SI}};
  const auto system =
      std::ranges::find_if(systems, [&](const auto& one) { return equalNoCase(one.first, word); });
  if (system == std::end(systems))
    throw CLI::ValidationError(fmt::format("--units is metric, field, lab or si, not \"{}\"", word));
  return system->second;
}

}  // namespace

Subcommand::Subcommand(CommandLine& line, const std::string& name, const std::string& description)
    : command_(*line.app.add_subcommand(name, description)), chosen_(line.chosen) {}

void Subcommand::setAction(Action action) {
  command_.callback([action = std::move(action), &chosen = chosen_] { chosen = action; });
}

void Subcommand::path(std::string& path, const std::string& description, const std::string& name) {
  command_.add_option(name, path, description)->required()->option_text(" ");
}

void Subcommand::flag(const std::string& name, bool& given, const std::string& description) {
  command_.add_flag(name, given, description);
}

void Subcommand::value(const std::string& name, std::string& text, const std::string& word,
                       const std::string& description) {
  command_.add_option(name, text, description)->option_text(word);
}

void Subcommand::value(const std::string& name, std::optional<std::int32_t>& number, const std::string& word,
                       const std::string& description) {
  addNumber(command_, name, number, word, description, false);
}

void Subcommand::requiredValue(const std::string& name, std::string& text, const std::string& word,
                               const std::string& description) {
  command_.add_option(name, text, description)->required()->option_text(word);
}

void Subcommand::ordinal(const std::string& name, std::int32_t& number, const std::string& description) {
  addNumber(command_, name, number, "N", description, true);
}

void Subcommand::repeated(const std::string& name, std::vector<std::string>& texts, const std::string& word,
                          const std::string& description) {
  command_.add_option(name, texts, description)->allow_extra_args(false)->option_text(word);
}

void Subcommand::list(const std::string& name, std::vector<std::string>& texts, const std::string& word,
                      const std::string& description) {
  command_.add_option(name, texts, description)->allow_extra_args(false)->delimiter(',')->option_text(word);
}

void Subcommand::runs(RunOptions& options) {
  command_
      .add_option("PATH", options.paths, "A file of the run, its root name or its folder; several runs too")
      ->required()
      ->option_text(" ");
  flag("--each", options.each, "Every run of a folder");
}

void Subcommand::time(TimeOptions& options) {
  value("--steps", options.steps, "A:B", "Report steps: 3:7, 3:, :7, 3, 3:7,9 or last");
  value("--date", options.date, "DATE",
        "The last one at or before a date, as 2001-08-01 or 2001-08-01T06:30:00");
  value("--from", options.from, "DATE", "From a date on");
  value("--to", options.to, "DATE", "Up to a date; one without a time of day means its end");
  value("--every", options.every, "PERIOD", "The last one of each day, month, quarter or year");
}

double positiveNumber(const std::string& name, const std::string& text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !(value >= 0))
    throw Failure(Usage, fmt::format("{} needs a number from 0, not \"{}\"", name, text));
  return value;
}

TimeSelection TimeOptions::selection() const {
  TimeSelection selection;
  if (!steps.empty()) selection = TimeSelection::parse(steps);
  if (!date.empty()) selection.at = parseMoment(date, true);
  if (!from.empty()) selection.from = parseMoment(from);
  if (!to.empty()) selection.to = parseMoment(to, true);
  if (every.empty()) return selection;
  constexpr std::pair<std::string_view, Every> periods[] = {
      {"day", Every::Day}, {"month", Every::Month}, {"quarter", Every::Quarter}, {"year", Every::Year}};
  const auto period =
      std::ranges::find_if(periods, [&](const auto& one) { return equalNoCase(one.first, every); });
  if (period == std::end(periods))
    throw Failure(Usage, fmt::format("--every is day, month, quarter or year, not \"{}\"", every));
  selection.every = period->second;
  return selection;
}

void Subcommand::output(OutputOptions& options, bool grdecl) {
  const auto setFormat = [&options, grdecl](const std::string& word) {
    options.grdecl = grdecl && equalNoCase(word, "grdecl");
    if (!options.grdecl) options.format = formatNamed(word);
  };
  command_
      .add_option_function<std::string>("--format", setFormat,
                                        grdecl
                                            ? "Form of the output: table, csv, json, ndjson, arrow or grdecl"
                                            : "Form of the output: table, csv, json, ndjson or arrow")
      ->option_text("FORMAT");
  const auto setUnits = [&options](const std::string& word) { options.units = unitsNamed(word); };
  command_.add_option_function<std::string>("--units", setUnits, "Convert values: metric, field, lab or si")
      ->option_text("SYSTEM");
  flag("--unit-row", options.unitRow, "Units in a second line of csv, or beside the rows of json");
  flag("--long", options.longForm, "A row for each value");
  value("-o,--output", options.file, "FILE", "Write to FILE, which appears when it is complete");
  flag("--replace", options.replace, "Let FILE replace a simulator file or a deck");
}

void Subcommand::footer(const std::string& text) { command_.footer(text); }

}  // namespace lumbarn::cli
