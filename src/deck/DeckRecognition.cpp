#include "DeckRecognition.h"

#include <cstdint>
#include <string_view>

#include "DeckLines.h"
#include "ECLCommonFunctions.h"
#include "EclipseDictionary.h"
#include "qvEclipseData.h"

namespace lumbarn {

namespace {

constexpr int enough = 3;

class Score {
 public:
  void take(std::string_view field) {
    if (field == "RUNSPEC") add(seenRUNSPEC_);
    if (field == "DIMENS") add(seenDIMENS_);
    if (field == "GRID") add(seenGRID_);
    if (field == "LOAD" && points_ == 0) add(seenLOAD_);
    if (field == "RESTART" && seenLOAD_) add(seenRESTART_);
    if ((field == "SUMMARY" || field == "SCHEDULE") && seenLOAD_) ++points_;
    // Deliberate: hosts expect the verdicts that follow from this, an equality and not one point more.
    if (field == "FIELD" || field == "METRIC" || field == "LAB") points_ = points_ == 1 ? -1 : 0;
    for (const std::string_view plain :
         {"COMPS", "START", "OIL", "WATER", "GAS", "WELLDIMS", "COORD", "ZCORN"}) {
      if (field == plain) ++points_;
    }
  }
  bool reached() const { return points_ >= enough; }
  bool fixedFormat() const { return !early() && !seenLOAD_ && seenRUNSPEC_ && seenGRID_ && !seenDIMENS_; }
  bool verdict() const {
    if (early()) return true;
    if (!seenLOAD_) return seenRUNSPEC_ && (seenGRID_ ? seenDIMENS_ : points_ > enough);
    return seenRESTART_ || points_ > enough;
  }

 private:
  void add(bool& seen) {
    seen = true;
    ++points_;
  }
  bool early() const { return reached() && (seenLOAD_ ? seenRESTART_ : seenRUNSPEC_); }

  int points_ = 0;
  bool seenRUNSPEC_ = false, seenDIMENS_ = false, seenGRID_ = false;
  bool seenLOAD_ = false, seenRESTART_ = false;
};

}  // namespace

bool recogniseHostDeck(const std::string& path, Session& session) {
  constexpr std::int64_t mostLines = 1000;
  std::string why;
  const auto file = DeckLines::open(path, why);
  if (!file) return false;
  Score score;
  std::int32_t section = 0;
  std::string line;
  while (!score.reached() && file->currentLine() < mostLines && file->readLine(line)) {
    if (session.cancelled()) throw LoadCanceled();
    const std::string clean = processCaseLine(line);
    if (checkIfCommentLine(line) || checkIfCommentLine(clean)) continue;
    const std::string field = ExtractKeyword(clean);
    std::int32_t row = 0, sectionOfRow = 0, keywordClass = 0;
    bool qOK = false;
    lookupKeyword(field, row, sectionOfRow, keywordClass, section, qOK, session);
    if (row > 0) score.take(field);
  }
  if (score.fixedFormat()) {
    // Hosts with a screen show it under the title "Eclipse File Format Error".
    session.diagnose(
        Diagnosis{.message = Message::DeckFixedFormat,
                  .path = path,
                  .problem = "Pre-1995 fixed format RUNSPEC section not supported. Please convert."});
  }
  return score.verdict();
}

}  // namespace lumbarn
