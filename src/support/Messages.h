#pragma once

#include <cstdint>
#include <string_view>

namespace lumbarn {

/// What a diagnosis means for the data that were delivered.
enum class Severity : std::uint8_t {
  Remark,      ///< nothing is missing; a choice or an assumption the user should know of
  Incomplete,  ///< data that were asked for are missing, and the file is valid as far as it goes
  Damage,      ///< the file, or the system that reads it, is at fault
};

/// One row of the table of diagnoses. The identifier is stable: hosts and scripts may compare it.
struct MessageRow {
  std::string_view id;  ///< "summary.params.length"
  Severity severity;
  std::string_view text;  ///< shown when a diagnosis has no more specific problem text
};

// Every diagnosis that the library reports has its row here, grouped by the directory that reports it:
// name, identifier, severity, text.
// clang-format off
#define LUMBARN_MESSAGES(ROW)                                                                                \
  /* record */                                                                                               \
  ROW(RecordTruncated, "record.truncated", Incomplete, "record truncated")                                   \
  ROW(RecordDamaged, "record.damaged", Damage, "record damaged")                                             \
  ROW(RecordType, "record.type", Damage, "record has an unexpected type")                                    \
  ROW(RecordLength, "record.length", Damage, "record has too few elements")                                  \
  ROW(RecordGap, "record.gap", Damage, "records are missing here; reading continues behind them")            \
  /* system */                                                                                               \
  ROW(FileOpen, "file.open", Damage, "file cannot be opened")                                                \
  ROW(FileRead, "file.read", Damage, "file cannot be read")                                                  \
  ROW(FileWrite, "file.write", Damage, "file cannot be written")                                             \
  ROW(FileEmpty, "file.empty", Damage, "file is empty")                                                      \
  ROW(FileType, "file.type", Damage, "file is of another type")                                              \
  ROW(FileChanged, "file.changed", Damage, "file changed while it was being read")                           \
  ROW(SystemFault, "system.fault", Damage, "operation failed")                                               \
  ROW(Stopped, "stopped", Incomplete, "stopped as requested")                                                \
  ROW(TableRequest, "frame.request", Incomplete, "the request does not match the columns of the table")      \
  ROW(UnitUnknown, "frame.unit", Remark, "values in an unknown unit are kept as they are")                   \
  ROW(RunColumn, "frame.run-column", Remark, "not all runs have the same columns")                           \
  ROW(RunColumnLeftOut, "frame.run-column.left-out", Incomplete, "column of a run does not fit the others")  \
  ROW(RequestMissing, "request.missing", Incomplete, "what was asked for is not there")                      \
  ROW(RequestRefused, "request.refused", Incomplete, "the request cannot be answered")                       \
  ROW(PatternUnmatched, "request.pattern", Remark, "nothing matches a pattern")                              \
  ROW(RunMissing, "run.missing", Incomplete, "no such file or run")                                          \
  ROW(RunSeveral, "run.several", Incomplete, "the path can mean several runs")                               \
  ROW(RunFileMissing, "run.file", Incomplete, "the run has no file of this type")                            \
  ROW(CompareMissing, "compare.missing", Remark, "only one of the two has it")                               \
  ROW(CompareRows, "compare.rows", Remark, "rows of only one of the two")                                    \
  ROW(CompareSize, "compare.size", Remark, "the two are of different size")                                  \
  ROW(ConvertReadBack, "convert.read-back", Damage, "what was written does not read back the same")          \
  /* files */                                                                                                \
  ROW(FolderList, "files.folder", Damage, "folder cannot be listed")                                         \
  ROW(FilesBothSets, "files.both", Remark, "the run has a unified file and step files")                      \
  ROW(FileOlder, "files.older", Incomplete, "older than the file before it; may be left from an earlier run") \
  /* index */                                                                                                \
  ROW(StepIncomplete, "step.incomplete", Incomplete, "report step is not complete")                          \
  ROW(StepTwice, "step.twice", Remark, "two report steps have the same number")                              \
  ROW(IndexDisagrees, "index.disagrees", Remark, "index does not agree with the files that it indexes")      \
  ROW(IndexNotWritten, "index.not-written", Incomplete, "no index can be written")                           \
  /* arrays */                                                                                               \
  ROW(ArrayStepMissing, "arrays.step.missing", Incomplete, "report step not found")                          \
  ROW(ArrayMissing, "arrays.array.missing", Incomplete, "array not found")                                   \
  ROW(ArrayTwice, "arrays.array.twice", Remark, "two arrays have the same name")                             \
  ROW(ArrayMoved, "arrays.array.moved", Damage, "record is not where its index says")                        \
  ROW(ArrayBehindEnd, "arrays.array.end", Damage, "array is behind the end of the file")                     \
  ROW(ArrayNotOfCells, "arrays.array.cells", Incomplete, "array has no values for cells")                    \
  ROW(ArraySomeSteps, "arrays.array.steps", Remark, "array is missing in some of the steps")                 \
  ROW(ArrayUnmatched, "arrays.unmatched", Remark, "no array has this name")                                  \
  ROW(CellInactive, "arrays.cell.inactive", Remark, "cell is not active")                                    \
  ROW(ActiveCellsGuessed, "arrays.active.guess", Incomplete, "pore volumes disagree with the active cells")  \
  ROW(ActiveCellsUnknown, "arrays.active.unknown", Incomplete, "it is not known which cells are active")     \
  ROW(ActiveCellsBeyondNumbers, "arrays.active.number", Incomplete, "grid has too many cells to number")     \
  /* summary */                                                                                              \
  ROW(SpecRecordTwice, "summary.spec.twice", Remark, "record occurs more than once")                         \
  ROW(SpecRecordLength, "summary.spec.length", Incomplete,                                                   \
      "record does not have one element for each vector")                                                    \
  ROW(SpecRecordMissing, "summary.spec.missing", Incomplete, "record missing")                               \
  ROW(SpecStartDate, "summary.spec.startdat", Incomplete, "record contains no date")                         \
  ROW(SummaryNames, "summary.names", Remark, "several vectors have the same name")                           \
  ROW(SummaryDates, "summary.dates", Remark, "dates of the rows are not known: no start date or no TIME")    \
  ROW(SummaryRowLength, "summary.params.length", Damage, "row does not fit the specification")               \
  ROW(SummaryTimeDecreases, "summary.params.time", Damage, "TIME decreases")                                 \
  ROW(SummaryRowTwice, "summary.params.twice", Damage, "second row for one MINISTEP")                        \
  ROW(SummaryRowMissing, "summary.ministep.params", Incomplete, "MINISTEP without PARAMS")                   \
  ROW(SummaryFileNoRows, "summary.file.rows", Incomplete, "step file has no rows")                           \
  ROW(ChainRunMissing, "summary.chain.missing", Incomplete,                                                  \
      "the run that this one restarted from is not found")                                                   \
  ROW(ChainLoop, "summary.chain.loop", Incomplete, "the restart chain leads back to a later run")            \
  ROW(ChainConnections, "summary.chain.connections", Incomplete,                                             \
      "earlier run not merged into a table with completion vectors")                                         \
  ROW(ChainGap, "summary.chain.gap", Incomplete, "earlier run ends before the step of the restart")          \
  ROW(ChainUnits, "summary.chain.units", Incomplete, "vectors have other units in an earlier run")           \
  ROW(ChainNoValues, "summary.chain.vectors", Remark, "vectors that not every run of the chain has")         \
  ROW(ChainNames, "summary.chain.names", Remark, "truncated names matched with longer ones")                 \
  ROW(ChainStart, "summary.chain.start", Remark, "earlier run has another start date")                       \
  ROW(ChainProfiles, "summary.chain.profiles", Remark,                                                       \
      "profiles of a chain may show values of an earlier run under dates of the newest")                     \
  ROW(HeaderNumbers, "summary.headers.numbers", Incomplete,                                                  \
      "more different texts than a header of 24 bytes can number")                                           \
  /* restart */                                                                                              \
  ROW(RestartRecordType, "restart.record.type", Damage, "restart files have no records of this type")        \
  ROW(CellCount, "grid.cell-count", Damage, "cell count cannot be")                                          \
  ROW(WellRecordLength, "restart.well-record.length", Damage, "well record does not fit the header")         \
  ROW(RestartStepsMissing, "restart.steps.missing", Incomplete, "none of the report steps requested exists") \
  ROW(HeaderLength, "header.length", Damage, "header is too short")                                          \
  ROW(SaveRecordType, "save.record.type", Damage, "SAVE files have no records of this type")                 \
  /* init */                                                                                                 \
  ROW(InitCellCount, "init.intehead.cells", Damage, "cell count cannot be")                                  \
  ROW(InitRecordType, "init.record.type", Damage, "record of an unknown type")                               \
  ROW(InitArrayLength, "init.array.length", Incomplete, "array does not fit its grid")                       \
  ROW(InitArrayTwice, "init.array.twice", Remark, "grid has several arrays of this name")                    \
  ROW(InitActiveCells, "init.porv.cells", Incomplete, "it is not known which cells are active")              \
  ROW(InitConnections, "init.nnc.length", Incomplete, "connection arrays differ in length")                  \
  ROW(InitTableWords, "init.tabdims.length", Incomplete, "record is shorter than usual")                     \
  ROW(InitTableExtent, "init.table.extent", Damage, "table does not lie in TAB")                             \
  ROW(InitTablesNone, "init.table.none", Remark, "no simulation table is in use")                            \
  /* grid */                                                                                                 \
  ROW(GridType, "grid.type", Incomplete, "file contains no corner point grid")                               \
  ROW(GridSizes, "grid.sizes", Damage, "impossible sizes of a grid")                                         \
  ROW(GridShortRecord, "grid.record.short", Damage, "record of a grid too short")                            \
  ROW(GridLength, "grid.record.length", Damage, "length of an array does not match the sizes of its grid")   \
  ROW(GridMissing, "grid.missing", Damage, "records of a grid are missing")                                  \
  ROW(GridEnd, "grid.end", Incomplete, "grid has no ENDGRID")                                                \
  ROW(GridCell, "grid.cell", Damage, "cell lies outside of its grid")                                        \
  ROW(GridCellsOmitted, "grid.cells.omitted", Remark, "cells without a record are inactive")                 \
  ROW(GridCellsMissing, "grid.cells.missing", Incomplete, "last cells of the grid are missing")              \
  ROW(GridInactive, "grid.inactive", Incomplete, "grid has no active cell")                                  \
  ROW(GridNotFinite, "grid.values", Damage, "values of a grid are not finite")                               \
  ROW(GridFlatPillars, "grid.pillars.flat", Remark, "pillars have no height")                                \
  ROW(GridReservoirs, "grid.reservoirs", Damage, "layers of the reservoirs are not specified")               \
  ROW(GridLayers, "grid.reservoirs.layers", Remark, "layers of the reservoir are not those of the grid")     \
  ROW(GridMapAxes, "grid.mapaxes", Incomplete, "map axes are too short")                                     \
  ROW(GridCoarsening, "grid.coarsening", Incomplete, "coarsened cells are not a box")                        \
  ROW(GridParent, "grid.parent", Damage, "parent grid does not exist")                                       \
  ROW(GridHosts, "grid.hosts", Damage, "host cells do not exist")                                            \
  ROW(GridConnections, "grid.connections", Damage, "connections to cells that do not exist")                 \
  ROW(GridCacheUnused, "grid.cache.unused", Remark, "grid cache not used")                                   \
  ROW(GridCacheNotKept, "grid.cache.kept", Incomplete, "grid cache cannot be written")                       \
  /* welltests */                                                                                            \
  ROW(WellTestDate, "welltest.date", Incomplete, "date is not valid")                                        \
  ROW(WellTestArrayLength, "welltest.array.length", Incomplete, "array has another length than its table")   \
  ROW(WellTestConnections, "welltest.connections", Incomplete, "connections of RFT and PLT differ in number")\
  ROW(WellTestRecord, "welltest.record", Damage, "record of a test cannot be used")                          \
  ROW(WellTestReference, "welltest.reference", Damage, "segment or branch does not exist")                   \
  ROW(WellTestDerived, "welltest.derived", Incomplete, "derived values cannot be computed")                  \
  ROW(UserTestDate, "usertest.date", Incomplete, "no date can be made of it")                                \
  ROW(UserTestNumber, "usertest.number", Damage, "not a number")                                             \
  ROW(UserTestRow, "usertest.row", Damage, "row has too few numbers")                                        \
  ROW(UserTestWords, "usertest.words", Remark, "words are interpreted as column names or ignored")           \
  /* reader */                                                                                               \
  ROW(FileCode, "reader.code", Incomplete, "no reader for this file type code")                              \
  ROW(RunMember, "reader.run-member", Incomplete, "a file that belongs to this one is missing")              \
  ROW(NotLoaded, "reader.not-loaded", Incomplete, "no data of this type are loaded")                         \
  ROW(FetchedBefore, "reader.fetched-before", Incomplete, "the table was fetched before")                    \
  ROW(OtherCode, "reader.other-code", Remark, "nothing is returned for this file type code")                 \
  ROW(IndexFolder, "reader.index-folder", Incomplete, "no folder is specified for the index")                \
  ROW(CellGeometry, "reader.cell-geometry", Incomplete, "geometry of inactive cells was not kept")           \
  /* export */                                                                                               \
  ROW(ExportModule, "export.module", Damage, "the module of the export cannot be opened")                    \
  ROW(ExportHdf, "export.hdf5", Damage, "cannot be written as an HDF5 file")                                 \
  /* command */                                                                                              \
  ROW(FileContent, "check.content", Damage, "content is not what the name says")                             \
  ROW(RecordOrder, "check.records", Damage, "records do not fit together")                                   \
  ROW(SummaryRowOrder, "check.summary-row", Incomplete, "summary row is not complete")                       \
  /* deck */                                                                                                 \
  ROW(DeckUnknownKeyword, "deck.keyword", Remark, "unknown keyword")                                         \
  ROW(DeckWrongSection, "deck.section", Remark, "keyword in a section that does not have it")                \
  ROW(DeckNotClosed, "deck.not-closed", Damage, "a keyword begins where \"/\" or data are expected")         \
  ROW(DeckFileEnds, "deck.end", Incomplete, "the deck ends within the data of a keyword")                    \
  ROW(DeckOpenQuote, "deck.quote", Remark, "a quote is not closed on its line")                              \
  ROW(DeckColumn, "deck.column", Remark, "text past column 128, which simulators do not read")               \
  ROW(DeckStray, "deck.stray", Remark, "text that belongs to no keyword")                                    \
  ROW(DeckDataOnLine, "deck.same-line", Remark, "data on the line of the keyword")                           \
  ROW(DeckNoSlash, "deck.include-slash", Remark, "no \"/\" behind the name of an included file")             \
  ROW(DeckMissingFile, "deck.include", Incomplete, "an included file is not there")                          \
  ROW(DeckOtherCase, "deck.include-case", Remark, "an included file has its name in another letter case")    \
  ROW(DeckOtherFolder, "deck.include-folder", Remark, "an included file is not in the folder of the deck")   \
  ROW(DeckCycle, "deck.include-cycle", Damage, "a file includes itself")                                     \
  ROW(DeckBinary, "deck.binary", Damage, "this is not the text of a deck")                                   \
  ROW(DeckAlias, "deck.alias", Incomplete, "PATHS does not define the alias of an included file")            \
  ROW(DeckValue, "deck.value", Damage, "a value of a deck cannot be read")                                   \
  ROW(DeckCount, "deck.count", Damage, "an array has not as many values as the grid has cells")              \
  ROW(DeckOperation, "deck.operation", Incomplete, "an operation on arrays is not understood")               \
  ROW(DeckFixedFormat, "deck.fixed-format", Damage, "a deck in the fixed format from before 1995")           \
  ROW(DeckRestart, "deck.restart", Incomplete, "the restart file of a deck cannot be used")                  \
  ROW(DeckSimulatorChosen, "deck.simulator", Remark, "SKIP keywords count for the simulator that the deck is for")\
  /* end of the table */
// clang-format on

/// The rows by name: `Message::RecordTruncated`.
enum class Message : std::uint16_t {
#define LUMBARN_MESSAGE_NAME(name, id, severity, text) name,
  LUMBARN_MESSAGES(LUMBARN_MESSAGE_NAME)
#undef LUMBARN_MESSAGE_NAME
};

inline constexpr MessageRow messageRows[] = {
#define LUMBARN_MESSAGE_ROW(name, id, severity, text) {id, Severity::severity, text},
    LUMBARN_MESSAGES(LUMBARN_MESSAGE_ROW)
#undef LUMBARN_MESSAGE_ROW
};

/// The row that a diagnosis names. It has no default, so that no diagnosis is without one.
class NamedMessage {
 public:
  constexpr NamedMessage(Message row) : row_(row) {}
  constexpr operator Message() const { return row_; }

 private:
  Message row_;
};

constexpr const MessageRow& rowOf(Message message) { return messageRows[static_cast<std::size_t>(message)]; }

}  // namespace lumbarn
