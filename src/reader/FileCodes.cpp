#include "FileCodes.h"

#include <algorithm>
#include <span>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ReaderParts.h"

namespace lumbarn {

namespace {

template <auto part>
ReaderPart& partOf(ReaderParts& parts) {
  return parts.*part;
}

bool isSpecification(const std::string& path, Session& session) {
  return qvEclipseSPEC(session).CheckSPECFile(path);
}
bool isRestart(const std::string& path, Session& session) {
  return qvEclipseSOLUTION(session).CheckRESTARTFile(path);
}
bool isRestartIndex(const std::string& path, Session& session) {
  bool qIndex = false;
  qvEclipseRSSPEC(session).CheckRESTARTFile(path, qIndex);
  return qIndex;
}
bool isGrid(const std::string& path, Session& session) { return qvGRIDReader(session).CheckGRIDFile(path); }
bool isEGrid(const std::string& path, Session& session) { return qvGRIDReader(session).CheckEGRIDFile(path); }
bool isDeck(const std::string& path, Session& session) {
  return qvEclipseDat(session).CheckifEclipseFile(path);
}
bool isInit(const std::string& path, Session& session) { return qvEclipseINIT(session).CheckINITFile(path); }

using Reader = qvEclipseReader;
using Parts = ReaderParts;

// In order of code. Two codes can have one part; then one of them answers whether it holds data. The summary
// reader asks for the specification under both of its codes. A grid is held under 14, whichever file it came
// from.
constexpr FileCode codes[] = {
    // code, name, part, answers held, load, check
    {11, "restart", partOf<&Parts::restart>, true, &Reader::ReadSolutionFile, isRestart},
    {12, "summary", partOf<&Parts::summary>, false, &Reader::ReadSummaryFile, isSpecification},
    {13, "summary", partOf<&Parts::summary>, true, &Reader::ReadSummaryFile, isSpecification},
    {14, "grid", partOf<&Parts::grid>, true, &Reader::ReadGridFile, isGrid},
    {15, "INIT", partOf<&Parts::init>, true, &Reader::ReadINITFile, isInit},
    {16, "restart", partOf<&Parts::restart>, false, &Reader::ReadSolutionFile, isRestart},
    {18, "well test", partOf<&Parts::tests>, true, &Reader::ReadRFTFile},
    {19, {}},  // summary as a text table
    {23, "grid", partOf<&Parts::grid>, false, &Reader::ReadEGridFile, isEGrid},
    {25, "deck", partOf<&Parts::deck>, true, &Reader::ReadDATFile, isDeck},
    {28, "restart index", partOf<&Parts::restartIndex>, true, nullptr, isRestartIndex},
    {76, "well test", partOf<&Parts::userTests>, true, &Reader::ReadUserRFTFile},
    {77, "well test", partOf<&Parts::userTests>, false, &Reader::ReadUserPLTFile},
    {152, {}},  // streamlines
};

}  // namespace

const FileCode* findFileCode(std::int32_t code) {
  const auto* found = std::ranges::find(codes, code, &FileCode::code);
  return found == std::end(codes) ? nullptr : found;
}

std::string loadableCodes() {
  std::vector<std::string> ranges;
  for (std::int32_t first = codes[0].code; first <= std::rbegin(codes)->code; ++first) {
    std::int32_t end = first;
    for (const FileCode* row = findFileCode(end); row && row->load; row = findFileCode(end)) ++end;
    if (end == first) continue;
    if (end - first > 2) {
      ranges.push_back(fmt::format("{} to {}", first, end - 1));
    } else {
      for (std::int32_t code = first; code < end; ++code) ranges.push_back(std::to_string(code));
    }
    first = end;
  }
  const std::string last = ranges.back();
  ranges.pop_back();
  return fmt::format("{} or {}", fmt::join(ranges, ", "), last);
}

std::string_view nameOf(ReaderParts& parts, const ReaderPart& part) {
  const auto* found =
      std::ranges::find_if(codes, [&](const FileCode& row) { return row.part && &row.part(parts) == &part; });
  return found == std::end(codes) ? "" : found->name;
}

}  // namespace lumbarn
