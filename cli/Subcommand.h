#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Console.h"
#include "Failure.h"
#include "Output.h"
#include "run/Selections.h"

namespace CLI {
class App;
}

namespace lumbarn::cli {

/// What a subcommand does once its arguments are known. Throws Failure.
using Action = std::function<ExitStatus(Console&)>;

/// The command line, to which subcommands are added. `chosen` takes the action of the one that is called.
struct CommandLine {
  CLI::App& app;
  Action& chosen;
};

/// Which runs to ask.
struct RunOptions {
  std::vector<std::string> paths;
  bool each = false;            ///< all runs that a path can mean
  bool namedInLongForm = true;  ///< the long form has a column `run` of a single run too
};

/// A number from 0 on, of an option. Throws Failure for any other text.
double positiveNumber(const std::string& name, const std::string& text);

/// Which rows or steps to show, as texts of the command line.
struct TimeOptions {
  std::string steps;
  std::string date;
  std::string from;
  std::string to;
  std::string every;

  bool given() const {
    return !(steps.empty() && date.empty() && from.empty() && to.empty() && every.empty());
  }
  /// Throws Error BadRequest for texts that are none.
  TimeSelection selection() const;
};

/// A subcommand and its arguments, as its help lists them. The library that parses command lines is seen by
/// the implementation alone: each source that includes it compiles several times as long.
///
/// Arguments are named with their dashes ("-o,--output"), values by a word in capitals; they are stored in
/// the variables given, which keep what they hold when an argument is not there.
class Subcommand {
 public:
  Subcommand(CommandLine& line, const std::string& name, const std::string& description);

  /// Has `perform` called with the arguments, which are kept in the Options that this gives.
  template <class Options>
  Options& performs(ExitStatus (*perform)(const Options&, Console&)) {
    auto options = std::make_shared<Options>();
    setAction([options, perform](Console& console) { return perform(*options, console); });
    return *options;
  }

  /// The path, which is required: of a run, when not described otherwise.
  void path(std::string& path,
            const std::string& description = "A file of the run, its root name or its folder",
            const std::string& name = "PATH");
  void flag(const std::string& name, bool& given, const std::string& description);

  /// An option with a value.
  void value(const std::string& name, std::string& text, const std::string& word,
             const std::string& description);
  void value(const std::string& name, std::optional<std::int32_t>& number, const std::string& word,
             const std::string& description);
  void requiredValue(const std::string& name, std::string& text, const std::string& word,
                     const std::string& description);
  /// A number from 1.
  void ordinal(const std::string& name, std::int32_t& number, const std::string& description);
  /// One text for each time the option is given, so that the path may stand behind it.
  void repeated(const std::string& name, std::vector<std::string>& texts, const std::string& word,
                const std::string& description);
  /// As `repeated`, with each text split at its commas.
  void list(const std::string& name, std::vector<std::string>& texts, const std::string& word,
            const std::string& description);
  /// The paths of runs, one at least, and `--each`.
  void runs(RunOptions& options);
  /// `--steps`, `--date`, `--from`, `--to` and `--every`.
  void time(TimeOptions& options);
  /// `--format`, `-o`, `--replace`, `--units`, `--unit-row` and `--long`. `grdecl`: takes that form too.
  void output(OutputOptions& options, bool grdecl = false);

  /// What the help says behind the options.
  void footer(const std::string& text);

 private:
  void setAction(Action action);

  CLI::App& command_;
  Action& chosen_;
};

}  // namespace lumbarn::cli
