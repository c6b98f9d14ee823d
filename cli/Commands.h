#pragma once

#include <functional>

#include "Console.h"
#include "Failure.h"

namespace CLI {
class App;
}

namespace lumbarn::cli {

/// What a subcommand does once its arguments are known. Throws Failure.
using Action = std::function<ExitStatus(Console&)>;

/// Each adds one subcommand with its options to the command line; `chosen` takes its action when it is
/// called.
void addInfo(CLI::App& app, Action& chosen);
void addRecords(CLI::App& app, Action& chosen);
void addCheck(CLI::App& app, Action& chosen);
void addVectors(CLI::App& app, Action& chosen);
void addSummary(CLI::App& app, Action& chosen);
void addRft(CLI::App& app, Action& chosen);
void addGrid(CLI::App& app, Action& chosen);
void addWells(CLI::App& app, Action& chosen);
void addRestart(CLI::App& app, Action& chosen);
void addIndex(CLI::App& app, Action& chosen);
void addInit(CLI::App& app, Action& chosen);
void addTables(CLI::App& app, Action& chosen);

}  // namespace lumbarn::cli
