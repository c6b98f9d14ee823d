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
  ROW(None, "", Damage, "")                                                                                  \
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
  /* files */                                                                                                \
  /* index */                                                                                                \
  ROW(StepIncomplete, "step.incomplete", Incomplete, "report step is not complete")                          \
  ROW(StepTwice, "step.twice", Remark, "two report steps have the same number")                              \
  ROW(IndexDisagrees, "index.disagrees", Remark, "index does not agree with the files that it indexes")      \
  ROW(IndexNotWritten, "index.not-written", Incomplete, "no index can be written")                           \
  /* arrays */                                                                                               \
  /* summary */                                                                                              \
  /* restart */                                                                                              \
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
  /* export */                                                                                               \
  /* command */                                                                                              \
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

constexpr const MessageRow& rowOf(Message message) { return messageRows[static_cast<std::size_t>(message)]; }

}  // namespace lumbarn
