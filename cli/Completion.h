#pragma once

#include <ostream>
#include <span>
#include <string>

namespace CLI {
class App;
}

namespace lumbarn::cli {

/// Prints what can stand in place of the last of the words of a command line, one for each line: subcommands,
/// options, and the values of options, as names of vectors, arrays, wells, grids and steps, which are those
/// of the run that the line names. Prints ":files" where the shell is to complete names of files.
void complete(const CLI::App& app, std::span<const std::string> words, std::ostream& out);

}  // namespace lumbarn::cli
