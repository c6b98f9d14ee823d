#include <algorithm>
#include <memory>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "Commands.h"
#include "Numbers.h"
#include "Output.h"
#include "PathArgument.h"
#include "StepRange.h"
#include "Suggestion.h"
#include "VectorNames.h"
#include "reader/qvEclipseReader.h"
#include "summary/VectorSelection.h"

namespace lumbarn::cli {
namespace {

struct SummaryOptions {
  std::string path;
  std::vector<std::string> vectors;
  std::vector<std::string> except;
  std::string steps;
  bool restart = false;
  bool reportSteps = false;
  bool dates = false;
  bool keepDuplicates = false;
  OutputOptions output;
};

const SummaryVector timeVector{.mnemonic = "TIME", .name = "TIME"};

/// A loaded summary and what of it is to be shown.
struct LoadedSummary {
  std::vector<SummaryVector> vectors;  ///< one for each column of `values`
  XYData values;
  std::vector<std::size_t> rows;  ///< from 1
  std::vector<Moment> dates;      ///< of all rows of `values`; empty when there are none
};

/// Sets the patterns. Dates are made from TIME, and it is the first column unless it is left out, so it is always
/// loaded: when the exceptions include it, they are applied to the result instead.
bool setPatterns(const SummaryOptions& options, qvEclipseReader& reader) {
  reader.VectorPatterns = options.vectors;
  if (!options.vectors.empty()) reader.VectorPatterns.emplace_back("TIME");
  const bool withoutTime = !selectVectors(std::span(&timeVector, 1), {}, options.except).mask[0];
  if (!withoutTime) reader.ExceptPatterns = options.except;
  return withoutTime;
}

/// Tells of patterns that choose nothing. Throws Failure when none of `--vectors` does.
void tellUnmatched(const SummaryOptions& options, std::vector<std::string> unmatched, qvEclipseReader& reader,
                   Console& console) {
  std::vector<std::string> given;
  for (const std::string& list : options.vectors) {
    for (std::string& pattern : splitPatterns(list)) given.push_back(std::move(pattern));
  }
  std::vector<std::string> names;
  for (const SummaryVector& vector : reader.ListSummaryVectors(*std::make_unique<bool>())) names.push_back(vector.name);
  std::size_t missed = 0;
  for (const std::string& pattern : unmatched) {
    const bool chosen = std::ranges::count(given, pattern) > 0;
    if (!chosen && pattern == "TIME") continue;
    missed += chosen ? 1 : 0;
    const std::string better = closest(pattern, names);
    console.say(fmt::format("no vector matches \"{}\"{}", pattern,
                            better.empty() ? "" : fmt::format("; did you mean \"{}\"?", better)));
  }
  if (!given.empty() && missed == given.size()) {
    throw Failure(Usage, fmt::format("nothing to show; \"lumbarn vectors {}\" lists the names", options.path));
  }
}

}  // namespace
}  // namespace lumbarn::cli
