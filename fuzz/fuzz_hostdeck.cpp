#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "Checks.h"
#include "deck/qvEclipseDat.h"
#include "record/ByteSource.h"

namespace {

using namespace lumbarn;

void checkLines(const qvEclipseDat& deck, std::string_view text) {
  const DeckLineStores& lines = deck.contents().lines;
  for (const std::int32_t pointer : lines.iSectionLine)
    fuzz::check(pointer >= 0 && pointer <= lines.nSchedule(), "a section begins within the lines");
  for (const auto* store : {&lines.zSchedule, &lines.zReportStep, &lines.zEDIT}) {
    for (const std::string& line : *store)
      fuzz::check(line.starts_with("  '") || text.find(line) != text.npos, "a line is one of the deck");
  }
}

void checkGrids(qvEclipseDat& deck, std::size_t size) {
  constexpr std::int32_t fewCells = 10'000;
  for (std::int32_t grid = 1; grid <= deck.nGrids(); ++grid) {
    const DeckGridRecord& record = deck.contents().grids.records[static_cast<std::size_t>(grid) - 1];
    fuzz::check(record.nCells() >= 0 && record.iACTNUM.size() <= static_cast<std::size_t>(record.nCells()),
                "cells are those of the sizes");
    if (record.nCells() > fewCells) continue;
    XYData corners;
    std::vector<std::int32_t> activity;
    std::int32_t cells = -1;
    bool qOK = false;
    deck.getACTNUM(grid, activity, qOK);
    fuzz::check(qOK, "activity is known");
    deck.createcorners(grid, qOK);
    if (!qOK) continue;
    deck.getcorners(grid, corners, cells, qOK);
    fuzz::check(qOK && corners.columns() == static_cast<std::size_t>(cells), "every cell has corners");
  }
  std::size_t segments = 0;
  for (const DeckFault& fault : deck.contents().grids.faults) segments += fault.segments.size();
  fuzz::check(segments <= size, "a segment takes a byte at least");
}

}  // namespace

/// The first byte: options. The rest is a deck.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  Session session;
  qvEclipseDat deck(session);
  deck.ProcessAll = (data[0] & 1) != 0;
  deck.ProcessCorners = (data[0] & 2) != 0;
  deck.RUNSPECOnly = (data[0] & 4) != 0;
  deck.OffSet = (data[0] & 8) != 0;
  deck.RecordScheduleDeck = deck.RecordReportStepKeywords = (data[0] & 16) != 0;
  bool qOK = false;
  deck.readDeck(std::make_shared<MemorySource>(fuzz::bytesOf({data + 1, size - 1})), qOK);
  // Only an end of file where a line is due leaves a deck unread.
  fuzz::check(qOK || text == "\xEF\xBB\xBF", "a deck can be read to its end");
  checkLines(deck, text);
  checkGrids(deck, size);
  for (std::int32_t property = 0; property < 40; ++property) deck.getModelProperty(property);
  return 0;
}
