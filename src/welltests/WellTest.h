#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "../support/Dates.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "RecordWalk.h"
#include "TestHeader.h"

namespace lumbarn {

/// One array of a test as the file has it, to the last bit. Texts are without blanks at their ends.
struct LUMBARN_API WellTestColumn {
  using Values = std::variant<std::vector<float>, std::vector<double>, std::vector<std::int32_t>,
                              std::vector<bool>, std::vector<std::string>>;
  std::string name;
  Values values;
  std::uint64_t headerAt = 0;  ///< byte offset of its record, from 0

  std::size_t size() const;
  /// All values as integers. Nothing for texts, logicals and values that no 32-bit integer can stand for.
  std::optional<std::vector<std::int32_t>> integers() const;
};

/// Arrays with a value for each row, in file order.
struct LUMBARN_API WellTestTable {
  std::size_t rows = 0;
  std::vector<WellTestColumn> columns;

  /// The first column of that name, or null.
  const WellTestColumn* find(std::string_view name) const;
};

/// Units by quantity, empty where the file gives none.
struct WellTestUnits {
  std::string time, length, pressure, liquidRate, gasRate, reservoirRate, velocity, viscosity;
};

/// One well test as data: everything that the file holds of it, and nothing that is worked out.
struct LUMBARN_API WellTest {
  std::int32_t number = 0;        ///< in the file, from 1
  std::int32_t numberInWell = 0;  ///< among the tests of its well, from 1
  std::string well;
  std::string grid;      ///< name of the local grid; empty for the main grid
  std::string wellType;  ///< "STANDARD", "FRICTION" or "MULTISEG"
  float time = 0;        ///< since the start of the run, in the unit of time
  /// DATE, with the time of day that TIME has beyond whole days (so for runs that begin at midnight). Nothing
  /// when DATE is missing or no day.
  std::optional<Moment> date;
  WellTestUnits units;
  std::vector<std::string> welletc;  ///< all texts of the record, trimmed

  // Arrays go to the table that their name speaks of (CON and the RFT arrays; SEG; BRN), other names to the
  // first of these tables that has their length.
  WellTestTable connections;
  WellTestTable segments;
  WellTestTable branches;
  std::vector<WellTestColumn> others;  ///< of any other length

  bool complete = true;  ///< False when the file ends or is damaged within this test

  /// Unit of an array by its name, empty for one without or not known.
  std::string unit(std::string_view name) const;

  TextArray rawWelletc;  ///< the record as it stands
};

/// A branch of a multi-segment well.
struct WellBranch {
  std::int32_t number = 0;
  std::int32_t outletBranch = 0;       ///< the branch that it flows into; 0 for the one to the well head
  std::int32_t outletSegment = 0;      ///< the segment that it flows into; 0 likewise
  std::vector<std::int32_t> segments;  ///< against the flow, from the outlet upwards
};

/// How the branches of a well hang together.
struct WellTopology {
  std::vector<WellBranch> branches;     ///< by number
  std::vector<std::int32_t> undrained;  ///< segments from which no flow comes to the well head: those in
                                        ///< rings and those that flow into rings
  std::vector<std::int32_t> astray;     ///< segments that flow into one that is not there; they count as if
                                        ///< they flowed to the well head
};
/// From the arrays SEGNXT and SEGBRNO; nothing when the test has not both. Linear in the number of segments.
LUMBARN_API WellTopology topologyOf(const WellTest& test);

/// The tests of a file, one after the other; holds no more than one. What is wrong with the file is told as
/// diagnoses of the session.
class LUMBARN_API WellTestReader {
 public:
  /// Null, with a diagnosis, when the file cannot be opened or is no record file.
  static std::unique_ptr<WellTestReader> open(const std::string& path, Session& session);

  /// The next test. False at the end of the file and when the load was canceled. A test that is damaged is
  /// given with what was read of it; reading continues with the first test behind the damage.
  bool next(WellTest& test);

 private:
  WellTestReader(Session& session, std::unique_ptr<RecordWalk> records)
      : session_(&session), records_(std::move(records)) {}
  bool readTest(WellTest& test);
  WellTest testOf(const TestHeader& header);
  void sortColumns(WellTest& test, std::vector<WellTestColumn> columns) const;

  Session* session_;
  std::unique_ptr<RecordWalk> records_;
  std::int32_t number_ = 0;
  std::unordered_map<std::string, std::int32_t> numberOf_;  // by well
};

/// All tests of a file.
LUMBARN_API std::vector<WellTest> readWellTests(const std::string& path,
                                                Session& session = Session::process());

}  // namespace lumbarn
