#include "qvUserRFT.h"

#include <optional>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "../files/Recogniser.h"
#include "../files/UserTestText.h"
#include "../support/Fault.h"
#include "TimeOfDay.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvUserRFT";

/// Why a file cannot be a user's file of tests; nothing when it can. A file without the word that opens a
/// test is what the caller takes it for.
std::optional<Diagnosis> whyNot(UserTestKind kind, const std::string& path) {
  std::string problem;
  const auto source = FileSource::open(path, problem);
  if (!source) return Diagnosis{.message = Message::FileOpen, .path = path, .problem = problem};
  if (source->size() == 0) return Diagnosis{.message = Message::FileEmpty, .path = path, .offset = 0};
  Diagnosis wrong{
      .message = Message::FileType, .path = path, .offset = 0, .expected = "a text of well tests"};
  if (recogniseFile(path).form) {
    wrong.found = "a record file";
  } else if (!looksLikeText(*source)) {
    wrong.found = "not a text";
  } else {
    const auto text = recogniseUserTest(*source);
    if (!text || !text->stated || text->kind == kind) return std::nullopt;
    wrong.offset = text->offset;
    wrong.found =
        fmt::format("a {} file", nameOf(kind == UserTestKind::Rft ? FileKind::UserPlt : FileKind::UserRft));
  }
  return wrong;
}

}  // namespace

bool qvUserRFT::checkFile(UserTestKind kind, const std::string& zFile) {
  if (auto diagnosis = whyNot(kind, zFile)) {
    session_->diagnose(std::move(*diagnosis));
    return false;
  }
  FileName = zFile;
  return true;
}

bool qvUserRFT::readFile(UserTestKind kind) {
  return attempt(*session_, className, kind == UserTestKind::Rft ? "getRFTData" : "getPLTData", [&] {
    qDamaged = false;
    Diagnosis diagnosis{.message = Message::FileOpen, .path = FileName};
    std::shared_ptr<const ByteSource> source = FileSource::open(FileName, diagnosis.problem);
    if (!source) {
      session_->diagnose(std::move(diagnosis));
      return false;
    }
    LineReader reader(std::move(source), FileName);
    return readTests(kind, reader) && numberTests();
  });
}

/// The first test is there whatever the file holds; its end asks for a next one unless the file ends.
bool qvUserRFT::readTests(UserTestKind kind, LineReader& reader) {
  do {
    const auto& test = tests_.emplace_back(std::make_shared<qvUserRFTtest>(*session_));
    const bool read = test->read(kind, reader);
    qDamaged = qDamaged || test->qDamaged;
    if (session_->cancelled() || !(read || test->qDamaged)) return false;
    if (session_->Container) {
      session_->Container->fraction(static_cast<double>(reader.position()) /
                                    static_cast<double>(reader.size()));
    }
  } while (!reader.atEnd());
  return true;
}

void qvUserRFT::addRFTtest(std::shared_ptr<qvUserRFTtest> xRFTtest, bool& qOK) {
  guarded(*session_, qOK, className, "addRFTtest", [&] { tests_.push_back(std::move(xRFTtest)); });
}

void qvUserRFT::setRFTtestNumbers(bool& qOK) {
  guarded(*session_, qOK, className, "setRFTtestNumbers", [&] { return numberTests(); });
}

bool qvUserRFT::numberTests() {
  std::unordered_map<std::string_view, std::int32_t> testsOfWell;
  for (const auto& test : tests_) test->iTest = ++testsOfWell[test->zWell];
  return !tests_.empty();
}

const qvUserRFTtest& qvUserRFT::test(std::int32_t iTest) const {
  if (iTest < 1 || iTest > NumTests()) throw Fault(FaultNumber::Subscript);
  return *tests_[static_cast<std::size_t>(iTest - 1)];
}

std::vector<UserTest> qvUserRFT::tests(UserTestKind kind) const {
  std::vector<UserTest> all;
  for (const auto& test : tests_) {
    UserTest& one = all.emplace_back(UserTest{.number = static_cast<std::int32_t>(all.size()) + 1,
                                              .numberInWell = test->iTest,
                                              .well = test->zWell,
                                              .origin = test->zOrigin,
                                              .grid = test->zGrid,
                                              .wellType = test->zWellType,
                                              .time = test->dTime});
    const auto day = makeMoment(test->iYear, test->iMonth, test->iDay);
    if (day) one.date = *day + std::chrono::minutes(minuteOfDay(test->dTime));
    const UserTestTable& table = test->table(kind);
    for (std::size_t i = 0; i < table.columns(); ++i) {
      UserTestColumn& column = one.columns.emplace_back(
          UserTestColumn{table.name(i), std::string(table.units(i)), std::vector<float>(table.rows())});
      table.copyColumn(i, column.values);
    }
  }
  return all;
}

struct qvUserRFT::Outputs {
  XYData& xyData;
  ByteTable& bHeaders;
  std::int32_t& iNumber;
  std::string& zDate;
  std::string& zWell;
  std::string& zGrid;
  std::string& zOrigin;
};

bool qvUserRFT::fetch(UserTestKind kind, std::int32_t iTest, Outputs out) const {
  const qvUserRFTtest& asked = test(iTest);
  auto data = asked.data(kind);
  auto headers = data ? asked.headers(kind) : std::nullopt;
  if (!headers) return false;
  out.xyData = std::move(*data);
  out.bHeaders = std::move(*headers);
  out.iNumber = asked.iTest;
  out.zDate = withTimeOfDay(asked.zDate, asked.dTime);
  out.zWell = asked.zWell;
  out.zGrid = asked.zGrid;
  out.zOrigin = asked.zOrigin;
  return true;
}

void qvUserRFT::GetRFTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iRFTtest,
                           std::string& zDate, std::string& zWell, std::string& zGrid, std::string& zOrigin,
                           bool& qOK) {
  guarded(*session_, qOK, className, "GetRFTtest", [&] {
    return fetch(UserTestKind::Rft, iTest, {xyData, bHeaders, iRFTtest, zDate, zWell, zGrid, zOrigin});
  });
}

void qvUserRFT::GetPLTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iPLTtest,
                           std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK) {
  std::string zOrigin;
  guarded(*session_, qOK, className, "GetPLTtest", [&] {
    return fetch(UserTestKind::Plt, iTest, {xyData, bHeaders, iPLTtest, zDate, zWell, zGrid, zOrigin});
  });
}

}  // namespace lumbarn
