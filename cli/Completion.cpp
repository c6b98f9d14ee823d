#include "Completion.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "run/Run.h"

namespace lumbarn::cli {
namespace {

using Names = std::vector<std::string>;

/// The different texts of a column, in order.
Names namesIn(Stream&& table, std::string_view column) {
  Names names;
  std::set<std::string, std::less<>> met;
  while (const auto batch = table.next()) {
    const Column texts = (*batch)[column];
    for (std::size_t row = 0; row < batch->rows(); ++row) {
      const std::string_view name = texts.text(row);
      if (!name.empty() && met.insert(std::string(name)).second) names.emplace_back(name);
    }
  }
  return names;
}

Names vectorsOf(const Run& run) { return namesIn(run.vectors(), "name"); }
Names gridsOf(const Run& run) { return namesIn(run.grids(), "name"); }

Names wellsOf(const Run& run) { return namesIn(run.wells(), "well"); }

Names arraysOf(const Run& run) {
  Names names;
  for (const bool init : {false, true}) {
    try {
      const Names of = namesIn(run.arrays({.init = init}), "array");
      names.insert(names.end(), of.begin(), of.end());
    } catch (const Error&) {  // the run has no such file
    }
  }
  return names;
}

Names stepsOf(const Run& run) {
  Names names{"last"};
  for (const StepInfo& step : run.steps()) names.push_back(std::to_string(step.number));
  return names;
}

Names formats(const Run&) { return {"table", "csv", "json", "ndjson", "arrow"}; }
Names periods(const Run&) { return {"day", "month", "quarter", "year"}; }
Names unitSystems(const Run&) { return {"metric", "field", "lab", "si"}; }

/// Where the values of an option come from.
struct Values {
  std::string_view option;
  Names (*of)(const Run&);
  bool needsRun = true;
};
constexpr Values values[] = {
    {"--vectors", vectorsOf},     {"--except", vectorsOf},     {"--array", arraysOf},
    {"--by", arraysOf},           {"--weight", arraysOf},      {"--well", wellsOf},
    {"--grid", gridsOf},          {"--steps", stepsOf},        {"--step", stepsOf},
    {"--format", formats, false}, {"--every", periods, false}, {"--units", unitSystems, false},
};

const CLI::Option* optionNamed(const CLI::App& command, const std::string& word) {
  if (!word.starts_with('-')) return nullptr;
  return command.get_option_no_throw(word);
}
bool takesValue(const CLI::Option* option) { return option && option->get_type_size() > 0; }

/// The first run that a word of the line names.
std::optional<Run> runIn(const CLI::App& command, std::span<const std::string> words) {
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i].starts_with('-')) {
      i += takesValue(optionNamed(command, words[i])) ? 1 : 0;
      continue;
    }
    try {
      return Run::open(words[i]);
    } catch (const Error&) {  // no run yet
    }
  }
  return std::nullopt;
}

/// Prints those that begin as the word does, in any letter case. Of a list, what precedes the last comma
/// stays.
void offer(const Names& names, std::string_view word, std::ostream& out) {
  const auto comma = word.rfind(',');
  const std::string_view kept = comma == word.npos ? "" : word.substr(0, comma + 1);
  const std::string_view begun = word.substr(kept.size());
  for (const std::string& name : names) {
    const bool fits =
        name.size() >= begun.size() &&
        std::ranges::equal(begun, std::string_view(name).substr(0, begun.size()), [](char a, char b) {
          return std::toupper(static_cast<unsigned char>(a)) == std::toupper(static_cast<unsigned char>(b));
        });
    if (fits) out << kept << name << "\n";
  }
}

Names optionsOf(const CLI::App& command) {
  Names names;
  for (const CLI::Option* option : command.get_options()) {
    for (const auto& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

void offerValues(const CLI::App& command, const std::string& option, std::span<const std::string> words,
                 std::ostream& out) {
  const auto found = std::ranges::find(values, option, &Values::option);
  if (found == std::end(values)) {
    out << ":files\n";
    return;
  }
  const auto others = words.first(words.size() - 1);
  std::optional<Run> run = found->needsRun ? runIn(command, others) : std::nullopt;
  if (found->needsRun && !run) return;
  try {
    offer(run ? found->of(*run) : found->of(Run(nullptr)), words.back(), out);
  } catch (const Error&) {  // the run has no such names
  }
}

}  // namespace

void complete(const CLI::App& app, std::span<const std::string> words, std::ostream& out) {
  if (words.empty()) return;
  if (words.size() == 1) {
    Names names = optionsOf(app);
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
      names.push_back(command->get_name());
    return offer(names, words[0], out);
  }
  const auto found = app.get_subcommands([&](const CLI::App* one) { return one->get_name() == words[0]; });
  if (found.empty()) return;
  const CLI::App* command = found.front();
  const auto line = words.subspan(1);
  const std::string& word = line.back();
  if (line.size() > 1 && takesValue(optionNamed(*command, line[line.size() - 2])))
    return offerValues(*command, line[line.size() - 2], line, out);
  if (word.starts_with('-')) return offer(optionsOf(*command), word, out);
  out << ":files\n";
}

}  // namespace lumbarn::cli
