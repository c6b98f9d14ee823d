#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Diagnosis.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "RecordWalk.h"
#include "TestParser.h"
#include "TestTable.h"

namespace lumbarn {

/// Diagnoses of one test. Within the library only: the walk must be at the test.
struct LUMBARN_API TestReport {
  Session& session;
  RecordWalk& walk;

  void operator()(Message message, std::string_view keyword, std::uint64_t headerAt, std::string_view problem,
                  std::string expected, std::string found, std::string_view action) const;
};

/// The arrays of a test as singles, sorted by name into the four tables that hosts know.
struct LUMBARN_API TestTables {
  explicit TestTables(TestTable::Memory* memory)
      : rft(10, memory), plt(28, memory), segments(28, memory), branches(4, memory) {}

  TestTable rft, plt, segments, branches;
  std::vector<float> wellPlt;     ///< WELLPLT as read; nothing uses it
  std::int32_t nConnections = 0;  ///< rows of the RFT and of the PLT table
  std::int32_t nSegments = 0;
  std::int32_t nBranches = 0;
  std::int32_t depthColumn = 1;  ///< of the RFT table
  bool hasRft = false;           ///< an RFT array was stored
  bool hasPlt = false;
  bool hasSegments = false;  ///< an array of segments or branches was stored
  bool hasIndices = false;   ///< connection indices were read, see `RecordWalk::indices`

  /// The table that takes arrays of this name; null when none does.
  TestTable* tableOf(std::string_view keyword);
  /// True when an array has a value for each row of the table; the first array determines the number of rows.
  /// Others are skipped and reported.
  bool accepts(TestTable& table, std::string_view name, std::int64_t rows, std::uint64_t headerAt,
               const TestReport& report);
  /// Adds a column if the table accepts it.
  void add(TestTable& table, std::string_view name, std::span<const float> data, const TestReport& report,
           std::uint64_t headerAt = TestTable::derived);
  /// Keeps account of a column that was added.
  void stored(const TestTable& table, std::string_view name);

 private:
  std::int32_t& rowCount(const TestTable& table);
};

/// Sorts the arrays of a test into tables while they are read. A DATE of fewer than three numbers and a
/// WELLETC without well and grid are Fault 9.
class LUMBARN_API TableFiller final : public TestSink {
 public:
  TableFiller(TestTables& tables, const TestHeader& header, const TestReport& report)
      : tables_(tables), header_(header), report_(report) {}

  void headerRecord(const RecordHeader& record) override;
  void array(RecordCursor& cursor) override;

 private:
  void readIndices(RecordCursor& cursor);
  void readColumn(RecordCursor& cursor, TestTable& table);

  TestTables& tables_;
  const TestHeader& header_;
  const TestReport& report_;
};

/// Types of arrays by name, trimmed and in any case.
LUMBARN_API bool checkRFTArray(std::string_view zName);     ///< PRESSURE, DEPTH, SWAT, SGAS
LUMBARN_API bool checkRFTPLTArray(std::string_view zName);  ///< CONIPOS, CONJPOS, CONKPOS, I, J, K
LUMBARN_API bool checkPLTArray(std::string_view zName);     ///< begins with CON
LUMBARN_API bool checkSEGArray(std::string_view zName);     ///< begins with SEG or BRN

}  // namespace lumbarn
