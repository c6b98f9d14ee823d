#pragma once

#include "Subcommand.h"

namespace lumbarn::cli {

/// Each adds one subcommand with its arguments.
void addInfo(CommandLine& line);
void addRecords(CommandLine& line);
void addCheck(CommandLine& line);
void addVectors(CommandLine& line);
void addSummary(CommandLine& line);
void addRestart(CommandLine& line);
void addCells(CommandLine& line);
void addStats(CommandLine& line);
void addWells(CommandLine& line);
void addInit(CommandLine& line);
void addTables(CommandLine& line);
void addDeck(CommandLine& line);
void addGrid(CommandLine& line);
void addRft(CommandLine& line);
void addIndex(CommandLine& line);
void addCompare(CommandLine& line);
void addConvert(CommandLine& line);

}  // namespace lumbarn::cli
