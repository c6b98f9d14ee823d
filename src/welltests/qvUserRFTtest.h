#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "../record/LineReader.h"
#include "../shapes/ByteTable.h"
#include "../shapes/XYData.h"
#include "../support/Diagnosis.h"
#include "../support/Export.h"
#include "../support/Guarded.h"
#include "../support/Session.h"
#include "UserTestTable.h"

namespace lumbarn {

/// One measured test of a user's RFT or PLT text file: a group of command lines, one or two lines of words
/// (names of columns and their units), and rows of numbers. The routines of the two kinds come in twins that
/// differ in the word that opens a test, in the depth column and in the table that they fill.
///
/// Words are upper case, as lines are before anything else is done with them.
class LUMBARN_API qvUserRFTtest {
 public:
  explicit qvUserRFTtest(Session& session = Session::process()) : session_(&session) {}

  // All texts are empty until a line of the file gives them.
  std::string zOrigin;
  std::string zWell;
  std::string zGrid;
  std::string zWellType;
  std::string zDateFormat = "DD-MMM-YYYY";  ///< order of day, month and year, by its first two letters
  std::string zDate;                        ///< "15 JUL 2003"
  std::int32_t iDay = 0;
  std::int32_t iMonth = 0;
  std::int32_t iYear = 0;
  double dTime = 0;        ///< days
  std::int32_t iTest = 0;  ///< number within the well, from 1
  bool qDamaged = false;   ///< a row with too few numbers ended the test

  /// Reads on to the first command line behind the rows, which is then the reader's next line, or to the end
  /// of the file. qOK False: cancelled, the file cannot be read on, or a row has too few numbers, which ends
  /// the test though not the way to its end; what was read until then is kept, that row included, with 0 for
  /// what it has not. Each is reported.
  ///
  /// What the lines say is taken as it looks: a line that begins with a number is data, so units that do are
  /// none; a line of words is one of names or units. What does not fit in makes a diagnosis, at most one of a
  /// kind for each test.
  void getUserRFTtest(LineReader& reader, bool& qOK) { qOK = read(UserTestKind::Rft, reader); }
  void getUserPLTtest(LineReader& reader, bool& qOK) { qOK = read(UserTestKind::Plt, reader); }

  /// Rows by columns, the depth column first, then those behind it, then those before it. Empty for a test
  /// of no columns, and for one of the other kind.
  void getRFTtestData(XYData& xyData, bool& qOK) const { give(data(UserTestKind::Rft), xyData, qOK); }
  void getPLTtestData(XYData& xyData, bool& qOK) const { give(data(UserTestKind::Plt), xyData, qOK); }
  /// One header for each column, in the same order: kind, units, well, test number and name, which is its own
  /// description.
  void getRFTtestHeaders(ByteTable& bHeaders, bool& qOK) const {
    give(headers(UserTestKind::Rft), bHeaders, qOK);
  }
  void getPLTtestHeaders(ByteTable& bHeaders, bool& qOK) const {
    give(headers(UserTestKind::Plt), bHeaders, qOK);
  }

  // The same for callers within the library. Nothing after a fault, which is reported in the name of the
  // operation.
  bool read(UserTestKind kind, LineReader& reader);
  std::optional<XYData> data(UserTestKind kind) const;
  std::optional<ByteTable> headers(UserTestKind kind) const;

  const UserTestTable& table(UserTestKind kind) const { return kind == UserTestKind::Rft ? rft_ : plt_; }

 private:
  struct Lines;

  bool readLines(Lines& lines);
  void processCommand(Lines& lines);
  void setDate(std::string_view arguments, Lines& lines);
  void setTime(const std::string& value, Lines& lines);
  void processData(Lines& lines);
  void AddData(Lines& lines);
  void AddHeaders(Lines& lines);

  Session* session_;
  UserTestTable rft_{UserTestKind::Rft};
  UserTestTable plt_{UserTestKind::Plt};
};

}  // namespace lumbarn
