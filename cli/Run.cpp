#include "Run.h"

#include <algorithm>
#include <new>
#include <sstream>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "Commands.h"
#include "Completion.h"
#include "ManPage.h"
#include "frame/Error.h"
#include "support/Closest.h"

namespace lumbarn::cli {
namespace {

void addCommands(CommandLine line) {
  addInfo(line);
  addRecords(line);
  addCheck(line);
  addVectors(line);
  addSummary(line);
  addRestart(line);
  addCells(line);
  addStats(line);
  addWells(line);
  addInit(line);
  addTables(line);
  addDeck(line);
  addGrid(line);
  addRft(line);
  addIndex(line);
  addCompare(line);
  addConvert(line);
}

/// The subcommand that was given, or the command itself.
const CLI::App& innermost(const CLI::App& app) {
  const auto given = app.get_subcommands();
  return given.empty() ? app : *given.back();
}

std::vector<std::string> wordsOf(const CLI::App& command) {
  std::vector<std::string> words;
  for (const CLI::App* subcommand : command.get_subcommands([](const CLI::App*) { return true; })) {
    words.push_back(subcommand->get_name());
  }
  for (const CLI::Option* option : command.get_options()) {
    for (const auto& name : option->get_lnames()) words.push_back("--" + name);
  }
  return words;
}

/// What is wrong with the arguments, in the words of their author.
std::string usageMessage(const CLI::App& app, const CLI::ParseError& error) {
  const CLI::App& command = innermost(app);
  std::string message = error.what();
  if (error.get_name() == "ArgumentMismatch")
    message = message.substr(0, message.find(':')) + " needs a value";
  const auto unknown = command.remaining();
  if (!unknown.empty()) {
    const bool option = unknown.front().starts_with('-');
    const char* kind = &command == &app && !option ? "subcommand" : option ? "option" : "argument";
    message = fmt::format("unknown {} \"{}\"", kind, unknown.front());
    const std::string better = closest(unknown.front(), wordsOf(command));
    if (!better.empty()) message += fmt::format("; did you mean \"{}\"?", better);
  }
  const std::string name = &command == &app ? "lumbarn" : "lumbarn " + command.get_name();
  return fmt::format("{} (see \"{} --help\")", message, name);
}

/// The exit status of a question that cannot be answered.
ExitStatus tellError(const Error& error, Console& console) {
  switch (error.kind()) {
    case Error::Kind::NotFound:
    case Error::Kind::BadRequest: {
      const auto similar = error.candidates();
      console.say(similar.size() == 1 ? fmt::format("{}; did you mean \"{}\"?", error.what(), similar[0])
                                      : std::string(error.what()));
      return Usage;
    }
    case Error::Kind::Cancelled:
      console.say("cancelled");
      return Cancelled;
    default:
      console.tell(error.diagnosis());
      return Unreadable;
  }
}

ExitStatus perform(const Action& action, Console& console) {
  try {
    return action(console);
  } catch (const Failure& failure) {
    if (*failure.what() != '\0') console.say(failure.what());
    return failure.status();
  } catch (const Error& error) {
    return tellError(error, console);
  } catch (const std::bad_alloc&) {
    console.say("out of memory");
  } catch (const std::exception& other) {
    console.say(other.what());
  }
  return Unreadable;
}

}  // namespace

int run(std::span<const std::string> args, std::ostream& out, std::ostream& err,
        const std::atomic<bool>& stop, bool terminal) {
  Console console(out, err, stop, terminal);
  CLI::App app("Reads files of reservoir simulators: summaries, restarts, grids and the rest of a run.",
               "lumbarn");
  app.set_version_flag("--version", "lumbarn " LUMBARN_VERSION);
  app.footer("Example: lumbarn info RUN.SMSPEC\n\"lumbarn SUBCOMMAND --help\" tells more about each.");
  app.require_subcommand(0, 1);
  Action chosen;
  addCommands({app, chosen});
  if (!args.empty() && args[0] == "__complete") {
    complete(app, args.subspan(1), out);
    return Done;
  }
  if (args.size() == 1 && args[0] == "__man") {
    writeManPage(app, out);
    return Done;
  }
  try {
    app.parse(std::vector<std::string>(args.rbegin(), args.rend()));
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) {
      console.say(usageMessage(app, error));
      return Usage;
    }
    chosen = [&app, &error](Console& asked) {  // help or version
      std::ostringstream text;
      app.exit(error, text, text);
      Output output({}, asked.out(), {});
      output.write(text.view());
      output.commit();
      return Done;
    };
    return perform(chosen, console);
  }
  if (!chosen) {
    err << app.help();
    return Usage;
  }
  return perform(chosen, console);
}

}  // namespace lumbarn::cli
