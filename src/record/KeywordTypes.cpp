#include "KeywordTypes.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "KeywordCounts.h"

namespace lumbarn {

namespace {

/// Types as a set of bits, since some keywords have two.
using Types = std::uint16_t;
constexpr Types setOf(ElementType type) { return static_cast<Types>(1U << static_cast<unsigned>(type)); }

constexpr Types inte = setOf(ElementType::Integer);
constexpr Types real = setOf(ElementType::Single);
constexpr Types doub = setOf(ElementType::Double);
constexpr Types text = setOf(ElementType::Text);  // CHAR, and C0nn for long names
constexpr Types logi = setOf(ElementType::Logical);
constexpr Types reals = real | doub;  // written in double by some versions

struct Row {
  std::uint64_t key;
  Types types;
  std::int64_t least;  // elements that the readers need; writers have more, and any number above is fine

  constexpr Row(std::string_view keyword, Types allowed, std::int64_t needed = 0)
      : key(keywordKey(keyword)), types(allowed), least(needed) {}
};

// Only keywords whose data are read. A record of 0 elements is accepted unless the row says otherwise:
// writers leave such records for wells, groups or connections that the run does not have.
constexpr Row specification[] = {{"RESTART", text}, {"DIMENS", inte, 1},   {"KEYWORDS", text},
                                 {"WGNAMES", text}, {"NAMES", text},       {"NUMS", inte},
                                 {"UNITS", text},   {"STARTDAT", inte, 3}, {"LGRS", text},
                                 {"NUMLX", inte},   {"NUMLY", inte},       {"NUMLZ", inte}};
constexpr Row summary[] = {{"SEQHDR", inte}, {"MINISTEP", inte, 1}, {"PARAMS", real, 1}};
constexpr Row restart[] = {
    {"SEQNUM", inte, 1}, {"INTEHEAD", inte, 12}, {"LOGIHEAD", logi}, {"DOUBHEAD", doub, 1}, {"IGRP", inte},
    {"SGRP", reals},     {"XGRP", doub},         {"ZGRP", text},     {"IWEL", inte},        {"SWEL", real},
    {"XWEL", doub},      {"ZWEL", text},         {"ICON", inte},     {"SCON", real},        {"XCON", doub},
    {"LGR", text, 1},    {"LGRHEADI", inte},     {"LGRNAMES", text}};
constexpr Row restartIndex[] = {{"INTEHEAD", inte},  {"TIME", reals, 1},  {"ITIME", inte, 1},
                                {"NAME", text},      {"TYPE", text},      {"NUMBER", inte},
                                {"POINTER", inte},   {"POINTERB", inte},  {"LGRNAME", text},
                                {"ARRAYMAX", reals}, {"ARRAYMIN", reals}, {"UNITS", text}};
constexpr Row init[] = {{"INTEHEAD", inte, 12}, {"LOGIHEAD", logi}, {"DOUBHEAD", doub},
                        {"PORV", reals},        {"TABDIMS", inte},  {"TAB", doub},
                        {"LGR", text, 1},       {"LGRNAMES", text}, {"CON", doub}};
constexpr Row grid[] = {{"DIMENS", inte, 3}, {"MAPUNITS", text},    {"MAPAXES", reals}, {"GRIDUNIT", text, 1},
                        {"COORDS", inte, 4}, {"CORNERS", real, 24}, {"RADIAL", text}};
constexpr Row egrid[] = {{"FILEHEAD", inte, 1}, {"MAPUNITS", text}, {"MAPAXES", reals},
                         {"GRIDUNIT", text, 1}, {"GDORIENT", text}, {"GRIDHEAD", inte, 4},
                         {"COORD", real},       {"ZCORN", real},    {"ACTNUM", inte},
                         {"HOSTNUM", inte},     {"LGR", text, 1},   {"LGRPARNT", text},
                         {"NNCHEAD", inte, 1},  {"NNC1", inte},     {"NNC2", inte},
                         {"NNCL", inte},        {"NNCG", inte}};
// Connection indices that are stored as reals are arrays of production logs.
constexpr Row wellTest[] = {{"TIME", real, 1},        {"DATE", inte, 3},        {"WELLETC", text, 2},
                            {"CONIPOS", inte | real}, {"CONJPOS", inte | real}, {"CONKPOS", inte | real},
                            {"HOSTGRID", text}};

std::span<const Row> rowsOf(RecordFile file) {
  switch (file) {
    case RecordFile::Specification:
      return specification;
    case RecordFile::Summary:
      return summary;
    case RecordFile::Restart:
      return restart;
    case RecordFile::RestartIndex:
    case RecordFile::InitIndex:
      return restartIndex;
    case RecordFile::Init:
      return init;
    case RecordFile::Grid:
      return grid;
    case RecordFile::EGrid:
      return egrid;
    case RecordFile::WellTest:
      return wellTest;
    case RecordFile::Any:
    case RecordFile::Save:  // its readers know the lengths of a version
      break;
  }
  return {};
}

std::string typeNames(Types types) {
  constexpr std::pair<ElementType, std::string_view> names[] = {{ElementType::Integer, "INTE"},
                                                                {ElementType::Single, "REAL"},
                                                                {ElementType::Double, "DOUB"},
                                                                {ElementType::Text, "CHAR"},
                                                                {ElementType::Logical, "LOGI"}};
  std::string found;
  for (const auto& [type, name] : names) {
    if ((types & setOf(type)) == 0) continue;
    if (!found.empty()) found += " or ";
    found += name;
  }
  return found;
}

}  // namespace

std::optional<Diagnosis> unexpected(RecordFile file, const RecordHeader& header) {
  const auto rows = rowsOf(file);
  if (rows.empty() || header.keyword.size() > 8) return std::nullopt;
  const auto row =
      std::ranges::find(rows, header.key != 0 ? header.key : keywordKey(header.keyword), &Row::key);
  if (row == rows.end()) return std::nullopt;
  const auto report = [&header](Message message, std::string expected, std::string found) {
    return Diagnosis{.message = message,
                     .keyword = header.keyword,
                     .offset = header.headerAt,
                     .expected = std::move(expected),
                     .found = std::move(found)};
  };
  if ((row->types & setOf(header.type)) == 0)
    return report(Message::RecordType, typeNames(row->types), header.typeWord);
  if (header.count < row->least) {
    return report(Message::RecordLength, fmt::format("at least {} elements", row->least),
                  std::to_string(header.count));
  }
  return std::nullopt;
}

}  // namespace lumbarn
