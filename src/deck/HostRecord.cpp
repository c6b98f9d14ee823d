#include "HostRecord.h"

#include <algorithm>
#include <utility>

#include "../support/Fault.h"
#include "../text/DeckLine.h"
#include "ECLCommonFunctions.h"
#include "HostNumbers.h"

namespace lumbarn {

namespace {

/// Deliberate: the marks of comments count within quotes too, and not in the first two columns; "**" and "=="
/// only where there is no "--".
std::string_view withoutComment(std::string_view line) {
  for (const std::string_view mark : {"--", "**", "=="}) {
    const std::size_t at = line.find(mark);
    if (at != line.npos) return at < 2 ? line : line.substr(0, at);
  }
  return line;
}

/// Deliberate: a line without quotes ends at its first "/", one with quotes at its last, unless a quote
/// stands behind that. A "/" in column 1 ends nothing.
std::string_view withoutTerminator(std::string_view line) {
  std::size_t slash = line.find('/');
  if (slash == line.npos || slash == 0) return line;
  if (line.find('\'') != line.npos) {
    slash = line.find_last_of("/'");
    if (line[slash] == '\'') return line;
  }
  return line.substr(0, slash);
}

/// Walks the words of a line. Blanks divide outside quotes, commas, tabs and the quotes themselves
/// everywhere.
template <class Visit>
bool eachWord(std::string_view line, Visit visit) {
  bool quoted = false;
  bool any = false;
  std::size_t begin = 0;
  for (std::size_t i = 0; i <= line.size(); ++i) {
    const char c = i < line.size() ? line[i] : ',';
    if (c != ',' && c != '\t' && c != '\'' && (c != ' ' || quoted)) continue;
    if (i > begin) {
      any = true;
      visit(trimBlanks(line.substr(begin, i - begin)));
    }
    begin = i + 1;
    if (c == '\'') quoted = !quoted;
  }
  return any;
}

std::string withoutQuotes(std::string_view text) {
  std::string result(text);
  result.erase(std::remove(result.begin(), result.end(), '\''), result.end());
  return std::string(trimBlanks(result));
}

std::string replaceAlias(const std::string& name, const DeckAliases& aliases) {
  const std::size_t divider = std::min(name.find_first_of("\\/"), name.size());
  const std::string rest(trimBlanks(std::string_view(name).substr(std::min(divider + 1, name.size()))));
  const auto alias = aliases.find(std::string_view(name).substr(1, divider - 1));
  if (alias == aliases.end()) return rest;
  std::string path = alias->second;
  if (divider == name.size()) return path;
  if (!path.ends_with('/') && !path.ends_with('\\')) path += name[divider];
  return path + rest;
}

bool closesRecord(const std::string& line) {
  return !checkifEclipseCommentLine(line) && line.find('/') != line.npos;
}

}  // namespace

std::optional<HostRepeat> hostRepeat(std::string_view word) {
  if (!word.empty() && (isDeckLetter(word[0]) || word[0] == '\'')) return HostRepeat{1, std::string(word)};
  const std::size_t star = std::min(word.find('*'), word.size());
  const auto count = hostNumber(word.substr(0, star));
  if (!count) return std::nullopt;
  const auto value = trimBlanks(word.substr(std::min(star + 1, word.size())));
  return HostRepeat{hostRounded(*count), value.empty() ? "*" : std::string(value)};
}

void RepeatBudget::take(std::size_t times, std::size_t size) {
  const std::size_t each = sizeof(std::string) + size;
  if (times > bytes / each) throw Fault(FaultNumber::OutOfMemory);
  bytes -= times * each;
}

bool splitRecord(std::string_view line, std::vector<std::string>& arguments, RepeatBudget& budget) {
  if (line == "/") return true;
  if (line.size() == 1) {
    arguments.emplace_back(line);
    return true;
  }
  // Deliberate: a word whose count is no number stands for what the word with a count before it gave.
  HostRepeat repeat{0, {}};
  return eachWord(withoutTerminator(withoutComment(line)), [&](std::string_view word) {
    const std::size_t star = word.find('*');
    if (star == word.npos || star == 0) {
      arguments.emplace_back(word);
      return;
    }
    auto found = hostRepeat(word);
    if (found) repeat = std::move(*found);
    if (repeat.count < 1) return;
    const auto times = static_cast<std::size_t>(repeat.count);
    budget.take(found ? times - 1 : times, repeat.value.size());
    arguments.insert(arguments.end(), times, repeat.value);
  });
}

std::size_t commentAt(std::string_view line) {
  bool quoted = false;
  for (std::size_t i = 0; i + 1 < line.size(); ++i) {
    if (line[i] == '\'') quoted = !quoted;
    if (!quoted && line[i] == '-' && line[i + 1] == '-') return i;
  }
  return line.size();
}

std::size_t endOfRecord(std::string_view line, std::size_t slash) {
  const std::size_t first = line.find('\'');
  if (first == line.npos || first >= slash) return slash + 1;
  bool inside = true;
  for (std::size_t quote = line.find('\'', first + 1); quote != line.npos;
       quote = line.find('\'', quote + 1)) {
    if (quote <= slash) {
      inside = !inside;
    } else if (inside) {
      slash = line.find('/', quote);
      inside = false;
      if (slash == line.npos) return line.size();
    } else {
      break;
    }
  }
  return slash + 1;
}

std::optional<std::size_t> slashBehindName(std::string_view line) {
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '\'') quoted = !quoted;
    if (quoted || line[i] != '/') continue;
    const bool ends = i + 1 == line.size() || line[i + 1] == ' ' || line[i + 1] == '\t';
    if (ends || (i > 0 && line[i - 1] == '\'')) return i;
  }
  return std::nullopt;
}

std::size_t cutBehindSlash(std::string& line, std::size_t slash) {
  // Deliberate: a "/" with a quote behind it counts as quoted, but only one step far.
  const std::size_t quote = line.find('\'', slash);
  if (quote != line.npos) {
    const std::size_t next = quote + 1 < line.size() ? line.find('/', quote) : line.npos;
    slash = next == line.npos ? 0 : next + 1;
  }
  if (slash > 0 && slash < line.size()) line.resize(slash);
  return slash;
}

std::optional<std::string> includeFileName(std::span<const std::string> lines, const DeckAliases& aliases) {
  const auto line = std::find_if_not(lines.begin(), lines.end(), checkifEclipseCommentLine);
  if (line == lines.end()) return std::nullopt;
  std::string name = *line;
  if (!trimBlanks(name).starts_with('\'')) {
    name.resize(slashBehindName(name).value_or(name.size()));
  } else if (const std::size_t slash = name.find('/'); slash != name.npos) {
    cutBehindSlash(name, slash + 1);
    if (name.ends_with('/')) name.pop_back();
  }
  name = withoutQuotes(name);
  return name.starts_with('$') ? replaceAlias(name, aliases) : name;
}

std::vector<std::string> mergedArguments(std::span<const std::string> arguments,
                                         std::span<const std::string> defaults) {
  const auto longer = defaults.size() > arguments.size() ? defaults : arguments;
  std::vector<std::string> merged(longer.begin(), longer.end());
  const std::size_t both = std::min(arguments.size(), defaults.size());
  for (std::size_t i = 0; i < both; ++i) merged[i] = arguments[i] == "*" ? defaults[i] : arguments[i];
  return merged;
}

void joinRecords(std::vector<std::string>& lines) {
  if (lines.size() < 2 || std::none_of(lines.begin(), lines.end(), closesRecord)) return;
  std::vector<std::string> records;
  std::string open;
  for (std::string& line : lines) {
    if (checkifEclipseCommentLine(line)) continue;
    const bool closes = closesRecord(line);
    if (open.empty()) {
      open = std::move(line);
    } else {
      open.append(1, ' ').append(line);
    }
    if (closes) records.push_back(std::exchange(open, {}));
  }
  lines = std::move(records);
}

void joinRecordsInPlace(std::vector<std::string>& lines) {
  if (std::count_if(lines.begin(), lines.end(), closesRecord) < 2) return;
  std::vector<std::size_t> record;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (checkifEclipseCommentLine(lines[i])) continue;
    record.push_back(i);
    if (!closesRecord(lines[i])) continue;
    for (std::size_t k = 1; k < record.size(); ++k) {
      lines[record[0]].append(1, ' ').append(lines[record[k]]);
      lines[record[k]].clear();
    }
    record.clear();
  }
}

}  // namespace lumbarn
