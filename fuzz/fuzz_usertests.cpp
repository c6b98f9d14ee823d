#include <algorithm>
#include <cmath>
#include <memory>

#include "Checks.h"
#include "files/Recogniser.h"
#include "record/ByteSource.h"
#include "record/LineReader.h"
#include "welltests/qvUserRFT.h"

namespace {

using namespace lumbarn;

/// The lines of a text, put together with what stands between them, are the text.
void checkLines(const std::shared_ptr<const ByteSource>& source) {
  LineReader reader(source, "fuzz input");
  std::uint64_t end = 0;
  while (reader.next()) {
    fuzz::check(reader.position() >= end && reader.position() <= end + 3, "lines follow each other");
    fuzz::check(reader.line().find_first_of("\r\n") == std::string_view::npos, "a line is one line");
    end = reader.position() + reader.line().size();
  }
  fuzz::check(reader.size() - std::min(end, reader.size()) <= 3, "no line is lost");
}

void checkTest(const qvUserRFTtest& test, UserTestKind kind, std::uint64_t size) {
  const UserTestTable& table = test.table(kind);
  fuzz::check(table.rows() * table.columns() <= size, "every number takes a byte");
  XYData values;
  ByteTable headers;
  bool qOK = false;
  kind == UserTestKind::Rft ? test.getRFTtestData(values, qOK) : test.getPLTtestData(values, qOK);
  fuzz::check(qOK && values.columns() == table.columns(), "a test has its table");
  kind == UserTestKind::Rft ? test.getRFTtestHeaders(headers, qOK) : test.getPLTtestHeaders(headers, qOK);
  fuzz::check(qOK && headers.entries() == table.columns(), "one header per column");
  for (const float value : values.values()) fuzz::check(!std::isnan(value), "a number is a number");
  if (!test.zDate.empty()) {
    fuzz::check(makeMoment(test.iYear, test.iMonth, test.iDay).has_value(), "a date is one");
  }
}

}  // namespace

/// First byte: the kind that the text is read as. The rest is the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const auto source = std::make_shared<MemorySource>(fuzz::bytesOf({data + 1, size - 1}));
  checkLines(source);
  const auto kind = data[0] % 2 == 0 ? UserTestKind::Rft : UserTestKind::Plt;
  Session session;
  bool reported = false;
  session.faultReporter = [&](std::string_view) { reported = true; };
  LineReader reader(source, "fuzz input");
  qvUserRFT file(session);
  do {
    bool qRead = false;
    reported = false;
    auto test = std::make_shared<qvUserRFTtest>(session);
    kind == UserTestKind::Rft ? test->getUserRFTtest(reader, qRead) : test->getUserPLTtest(reader, qRead);
    fuzz::check(qRead != test->qDamaged, "a text is read unless a row is too short");
    fuzz::check(test->qDamaged == reported, "a row that is too short is reported, nothing else");
    fuzz::check(!test->qDamaged || !session.diagnoses().empty(), "and told");
    checkTest(*test, kind, size);
    bool qAdded = false;
    file.addRFTtest(std::move(test), qAdded);
  } while (!reader.atEnd());
  bool qNumbered = false;
  file.setRFTtestNumbers(qNumbered);
  fuzz::check(qNumbered && !file.tests(kind).empty(), "tests can be had");
  return 0;
}
