#include <algorithm>

#include <fmt/format.h>

#include "Answer.h"
#include "Commands.h"
#include "run/Decks.h"

namespace lumbarn::cli {
namespace {

struct DeckOptions {
  std::string path;
  DeckSelection selection;
  std::string records;
  std::string array;
  std::string grid;
  std::string grep;
  std::string change;
  bool effective = false;
  bool includes = false;
  OutputOptions output;
};

/// What is asked of the deck; one thing at a time.
void checkOptions(const DeckOptions& options) {
  const int questions = !options.records.empty() + !options.array.empty() + !options.grep.empty() +
                        !options.change.empty() + options.includes;
  if (questions > 1)
    throw Failure(Usage, "--records, --array, --includes, --grep and --set cannot be given together");
  if (!options.change.empty() && options.output.file.empty())
    throw Failure(Usage, "--set needs -o FILE: the changed file");
  if (questions > 0 && !options.selection.keywords.empty())
    throw Failure(Usage, "--keyword chooses from the list of keywords");
  if (!options.selection.section.empty() && questions > 0 && options.records.empty())
    throw Failure(Usage, "--section goes with --records and with the list of keywords");
  if (options.array.empty() && (options.effective || options.output.grdecl || !options.grid.empty()))
    throw Failure(Usage, "--effective, --grid and --format grdecl go with --array");
  if (!options.effective && (options.output.grdecl || !options.grid.empty()))
    throw Failure(Usage, "--grid and --format grdecl go with --effective");
}

Stream ask(const Deck& deck, const DeckOptions& options, const ReadOptions& read) {
  const std::string grid = options.grid.empty() ? "ROOT" : options.grid;
  if (options.includes) return deck.includes(read);
  if (!options.grep.empty()) return deck.grep(options.grep, read);
  if (!options.records.empty()) return deck.records(options.records, options.selection.section, read);
  if (options.array.empty()) return deck.keywordTable(options.selection, read);
  return options.effective ? deck.cells(options.array, grid, read) : deck.arrayAsWritten(options.array, read);
}

ExitStatus showDeck(const DeckOptions& options, Console& console) {
  checkOptions(options);
  const ReadOptions read = asking(console);
  const Deck deck = openDeck(options.path, read);
  std::vector<std::string> inputs;
  for (const DeckFile& file : deck.files().all()) inputs.push_back(file.path);
  if (!options.change.empty()) {
    const DeckChange change = DeckChange::parse(options.change);
    console.say(fmt::format("one value of {} is changed", fileOfChange(deck, change)));
    return writeAnswer([&](Sink& sink) { writeChanged(deck, change, sink); }, options.output, inputs,
                       console);
  }
  if (!options.output.grdecl) return writeAnswer(ask(deck, options, read), options.output, inputs, console);
  return writeAnswer(
      [&](Sink& sink) {
        const std::string grid = options.grid.empty() ? "ROOT" : options.grid;
        writeGrdecl(deckArray(deck, options.array, grid, read), options.array, sink);
      },
      options.output, inputs, console);
}

}  // namespace

void addDeck(CommandLine& line) {
  Subcommand command(line, "deck", "List the keywords of a data deck, or show the data of one");
  DeckOptions& options = command.performs(showDeck);
  command.path(options.path, "A deck, a file that one includes, or any file of a run");
  command.list("--keyword", options.selection.keywords, "PATTERN", "Keywords to list, as WEL* or COMPDAT");
  command.value("--section", options.selection.section, "NAME", "Keywords of one section only, as SCHEDULE");
  command.flag("--includes", options.includes,
               "The files that the deck includes, and which of them are missing");
  command.value("--records", options.records, "KEYWORD", "The records of a keyword, a row for each");
  command.value("--array", options.array, "NAME", "The values of an array as they are written");
  command.flag("--effective", options.effective,
               "The array as the simulator has it, after EQUALS, COPY, BOX and all other operations");
  command.value("--grid", options.grid, "NAME", "With --effective, a local grid");
  command.value("--grep", options.grep, "TEXT", "The lines of all files that contain a text, comments too");
  command.value(
      "--set", options.change, "CHANGE",
      "Write the file that has a value with that value changed, as WELSPECS[3].5=2400: record 3, item 5");
  command.output(options.output, true);
  command.footer(
      "A deck is read with all files that it includes; what is missing is reported. Examples:\n"
      "  lumbarn deck RUN.DATA --section SCHEDULE\n"
      "  lumbarn deck RUN --records WELSPECS --format csv\n"
      "  lumbarn deck RUN --array PERMX --effective --format grdecl -o permx.grdecl");
}

}  // namespace lumbarn::cli
