#pragma once

#include <ostream>

namespace CLI {
class App;
}

namespace lumbarn::cli {

/// Writes the manual page (lumbarn.1): general sections, and each subcommand with its options in the words of
/// its help.
void writeManPage(const CLI::App& app, std::ostream& out);

}  // namespace lumbarn::cli
