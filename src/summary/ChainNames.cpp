#include "ChainNames.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include <fmt/format.h>

#include "../support/Diagnosis.h"
#include "SummaryMatch.h"

namespace lumbarn {
namespace {

/// Long names by the truncated names of the other table that they are taken to be.
using Aliases = std::map<std::string_view, std::string_view>;
/// Names and their widths.
using Names = std::map<std::string_view, std::int32_t>;

std::int32_t widthOf(const NamedVectors& named, std::size_t i) {
  return named.widths.size() == 1 ? named.widths.front() : named.widths[i];
}

/// True when no name of one table can be the beginning of one of the other.
bool haveOneWidth(const NamedVectors& main, const NamedVectors& old) {
  return std::ranges::all_of(main.widths, [&](std::int32_t width) { return width == old.widths.front(); });
}

Names membersOf(const NamedVectors& named) {
  Names names;
  std::string_view last;
  for (std::size_t i = 0; i < named.vectors.size(); ++i) {
    const std::string_view member = named.vectors[i].member;
    if (member.empty() || member == last) continue;
    names.emplace(member, widthOf(named, i));
    last = member;
  }
  return names;
}

bool isTruncated(const Names::value_type& name, std::int32_t otherWidth) {
  return name.second < otherWidth && name.first.size() == static_cast<std::size_t>(name.second);
}

/// The only longer name of `others` that begins with the name; none when there are several, or the name
/// itself is one of them.
std::optional<std::string_view> longerName(const Names::value_type& name, const Names& others) {
  std::optional<std::string_view> found;
  for (auto it = others.lower_bound(name.first); it != others.end() && it->first.starts_with(name.first);
       ++it) {
    if (found || it->first == name.first || !isTruncated(name, it->second)) return std::nullopt;
    found = it->first;
  }
  return found;
}

Aliases aliasesFor(const Names& shorter, const Names& longer) {
  Aliases aliases;
  for (const auto& name : shorter) {
    if (const auto found = longerName(name, longer)) aliases.emplace(*found, name.first);
  }
  return aliases;
}

std::string keyOf(const SummaryVector& vector, const Aliases& aliases) {
  const auto alias = aliases.empty() ? aliases.end() : aliases.find(vector.member);
  const std::string_view member = alias == aliases.end() ? vector.member : alias->second;
  return matchingKey({vector.mnemonic, vector.classWord, member, vector.index, vector.lgr, vector.lgrClass});
}

/// Drops the aliases of truncated names that two vectors of one table share: which of them is meant cannot
/// be decided.
void dropAmbiguous(const NamedVectors& shorter, Aliases& aliases) {
  if (aliases.empty()) return;
  std::set<std::string_view> truncated, ambiguous;
  for (const auto& [full, alias] : aliases) truncated.insert(alias);
  std::set<std::string> met;
  for (const SummaryVector& vector : shorter.vectors) {
    if (truncated.contains(vector.member) && !met.insert(keyOf(vector, {})).second) {
      ambiguous.insert(vector.member);
    }
  }
  std::erase_if(aliases, [&](const auto& alias) { return ambiguous.contains(alias.second); });
}

std::vector<std::string> keysOf(const NamedVectors& named, const Aliases& aliases) {
  std::vector<std::string> keys;
  keys.reserve(named.vectors.size());
  for (const SummaryVector& vector : named.vectors) keys.push_back(keyOf(vector, aliases));
  return keys;
}

}  // namespace

KeyPairs matchingKeys(Session& session, const NamedVectors& main, const std::string& path,
                      const NamedVectors& old) {
  if (haveOneWidth(main, old)) return {keysOf(main, {}), keysOf(old, {})};
  const Names mainNames = membersOf(main), oldNames = membersOf(old);
  Aliases ofMain = aliasesFor(oldNames, mainNames), ofOld = aliasesFor(mainNames, oldNames);
  dropAmbiguous(old, ofMain);
  dropAmbiguous(main, ofOld);
  for (const Aliases* aliases : {&ofMain, &ofOld}) {
    if (aliases->empty()) continue;
    const auto& [full, truncated] = *aliases->begin();
    session.diagnose({.message = Message::ChainNames,
                      .path = path,
                      .keyword = "WGNAMES",
                      .found = fmt::format("\"{}\" for \"{}\"", truncated, full),
                      .action = fmt::format("matched {} names by their first characters", aliases->size()),
                      .certainty = Certainty::Likely});
  }
  return {keysOf(main, ofMain), keysOf(old, ofOld)};
}

}  // namespace lumbarn
