#include "DeckScanner.h"

#include <algorithm>
#include <array>
#include <utility>

#include "../support/Session.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

constexpr std::size_t keywordLength = 8;
constexpr std::size_t lineLength = 128;

/// The keyword that a word means: simulators read 8 characters and ignore letter case.
std::string nameOf(std::string_view word) { return upper(word.substr(0, keywordLength)); }

/// Files down to a depth hold their buffers; a thousand nested ones must not.
constexpr std::size_t buffersKept = 8;

/// Whether a block can be passed over within a record: it has no "/", and no letters but those of exponents.
/// Counts its line ends. Lanes, so that compilers make vectors of it.
bool isPlain(std::string_view block, char lineEnd, std::int64_t& lines) {
  constexpr std::size_t width = 32;
  std::array<std::uint8_t, width> stops{};
  std::array<std::uint8_t, width> ends{};  // a block has fewer than 256 times that many characters
  const auto look = [&](char c, std::size_t lane) {
    const auto letter = static_cast<std::uint8_t>((c | 0x20) - 'a');
    const auto exponent = static_cast<std::uint8_t>(letter - 3) < 2;
    stops[lane] = static_cast<std::uint8_t>(stops[lane] | (c == '/') |
                                            (static_cast<int>(letter < 26) & static_cast<int>(!exponent)));
    ends[lane] = static_cast<std::uint8_t>(ends[lane] + (c == lineEnd));
  };
  std::size_t i = 0;
  for (; i + width <= block.size(); i += width) {
    for (std::size_t lane = 0; lane < width; ++lane) look(block[i + lane], lane);
  }
  for (std::size_t lane = 0; i < block.size(); ++i, ++lane) look(block[i], lane);
  if (std::any_of(stops.begin(), stops.end(), [](std::uint8_t stop) { return stop != 0; })) return false;
  for (const std::uint8_t count : ends) lines += count;
  return true;
}

}  // namespace

DeckScanner::DeckScanner(const std::string& path, const DeckForms& forms, const Session& session,
                         DeckSimulator simulator)
    : forms_(&forms), session_(&session), simulator_(simulator) {
  files_.add({.path = path, .name = path});
  deck_ = files_.open(0);
}

DeckScanner::DeckScanner(std::shared_ptr<const ByteSource> source, const DeckForms& forms,
                         const Session& session, DeckSimulator simulator)
    : forms_(&forms), session_(&session), simulator_(simulator) {
  files_.add({.path = source->path(), .name = source->path()});
  files_.keep(source);
  deck_ = std::move(source);
}

bool DeckScanner::next(DeckKeyword& keyword) {
  if (deck_) push(0, std::move(deck_));
  while (!levels_.empty()) {
    if (top().position >= top().window->size()) {
      pop();
      continue;
    }
    if (step(keyword)) return true;
  }
  if (!open_) return false;
  const bool promised = current_.form != DeckForm::Tables && current_.form != DeckForm::Branches &&
                        current_.form != DeckForm::Open;
  if (inRecord_ || (promised && !(current_.form == DeckForm::Records && current_.records > 0))) {
    current_.closed = false;
    if (onNote)
      onNote({DeckNote::Kind::FileEnds, current_.file, current_.line, current_.offset, current_.name, {}});
  }
  return finish(keyword);
}

bool DeckScanner::step(DeckKeyword& keyword) {
  if (session_->CancelLoad || (session_->hostCancel && *session_->hostCancel)) throw LoadCanceled();
  if (open_ && inRecord_ && (linesOfRecord_ > 0 || current_.form == DeckForm::Array)) skipNumbers();
  if (top().position >= top().window->size()) return false;
  const std::string_view all = top().window->line(top().position);
  if (open_ && current_.form == DeckForm::Line) return feed(DeckLine{.code = all}, all, keyword);
  const bool isText = open_ && current_.form == DeckForm::Text;
  const DeckLine line = isText ? deckTextLine(all) : deckLine(all);
  if (line.code.empty()) {
    const auto kind = line.comment ? DeckSpan::Kind::Comment : DeckSpan::Kind::Blank;
    const DeckSpan span{kind, top().file, top().position, top().position + all.size()};
    if (open_) {
      trailing_.push_back(span);
    } else if (onSpan) {
      onSpan(span);
    }
    advance(all);
    return false;
  }
  look(line, all);
  return open_ && inRecord_ ? lineInRecord(line, all, keyword) : lineBetween(line, all, keyword);
}

bool DeckScanner::isInclude(std::string_view word, const DeckLine& line) const {
  if (!equalNoCase(word, "INCLUDE")) return false;
  const std::string_view behind = trim(line.code.substr(word.size()));
  return !(open_ && inRecord_) || behind.empty() || isDeckQuote(behind[0]);
}

bool DeckScanner::lineInRecord(const DeckLine& line, std::string_view all, DeckKeyword& keyword) {
  const std::string_view word = firstWord(line.code);
  if (isInclude(word, line)) {
    include(line, all);
    return false;
  }
  // Where numbers are, a keyword shows that the "/" is missing; elsewhere the name of a section that has the
  // line to itself.
  const bool numbers = current_.form == DeckForm::Array || current_.form == DeckForm::Tables ||
                       current_.form == DeckForm::Branches;
  const bool shown =
      numbers ? isKeywordWord(word) && forms_->find(nameOf(word), section_)
              : current_.form != DeckForm::Words && word == line.code && sectionOfDeck(nameOf(word)) > 0;
  if (shown && !line.slash) {
    noteNotClosed();
    return start(word, line, all, keyword);
  }
  return feed(line, all, keyword);
}

/// Whether the first word of a line outside a record starts a keyword. Well names may be alone on a line too,
/// so as long as the open keyword accepts more data the line is data.
bool DeckScanner::begins(std::string_view word, const DeckLine& line) const {
  if (word == "+" || word == "=") return line.code.size() == 1 && forms_->find(word, section_);
  if (!isKeywordWord(word)) return false;
  const std::string name = nameOf(word);
  const bool alone = line.code.size() == word.size();
  if (sectionOfDeck(name) > 0 || name == "END") return alone || !line.slash;
  if (open_ && (current_.form == DeckForm::List || current_.form == DeckForm::Text ||
                current_.form == DeckForm::Words))
    return false;
  const bool known = forms_->find(name, section_).has_value();
  if (!open_) return known || !line.slash;
  if (line.slash) return false;
  switch (current_.form) {
    case DeckForm::Tables:
    case DeckForm::Branches:
      return true;
    case DeckForm::Records:
      return known && (current_.records > 0 || alone);
    case DeckForm::Array:
      return known && alone;
    default:
      return known || alone || line.comment || current_.records == 0;
  }
}

bool DeckScanner::lineBetween(const DeckLine& line, std::string_view all, DeckKeyword& keyword) {
  const std::string_view word = line.code.starts_with("+") || line.code.starts_with("=")
                                    ? line.code.substr(0, 1)
                                    : firstWord(line.code);
  if (isInclude(word, line)) {
    include(line, all);
    return false;
  }
  if (begins(word, line)) {
    const bool missing = open_ && (current_.form == DeckForm::List || current_.form == DeckForm::Text ||
                                   current_.form == DeckForm::Words || current_.form == DeckForm::Array ||
                                   (current_.form == DeckForm::Records && current_.records == 0));
    if (missing) noteNotClosed();
    return start(word, line, all, keyword);
  }
  if (open_) return feed(line, all, keyword);
  if (line.code != "/") note(DeckNote::Kind::Stray, line.code.substr(0, lineLength), line.codeAt);
  emit(DeckSpan::Kind::Stray, top().position, top().position + all.size());
  advance(all);
  return false;
}

/// Begins a keyword on a line. The one before it, if it is not complete, is complete now.
bool DeckScanner::start(std::string_view word, const DeckLine& line, std::string_view all,
                        DeckKeyword& keyword) {
  if (open_) return finish(keyword);  // the line comes again
  const std::string name = nameOf(word);
  if (const std::int32_t section = sectionOfDeck(name)) section_ = section;
  const auto here = forms_->find(name, section_);
  // In the wrong section a keyword still has its form.
  const auto form = here ? here : forms_->find(name, 0);
  current_ = {};
  current_.name = name;
  current_.known = here.has_value();
  current_.form = form ? form->form : DeckForm::Open;
  current_.section = section_;
  current_.file = top().file;
  current_.offset = top().position;
  current_.line = top().line;
  recordsLeft_ = form ? form->records : 0;
  inRecord_ = false;
  linesOfRecord_ = 0;
  open_ = true;
  if (!current_.known) note(DeckNote::Kind::UnknownKeyword, name, line.codeAt);
  if (simulator_ == DeckSimulator::FromPhases && section_ <= 1 && (name == "COMPS" || name == "BLACKOIL"))
    simulator_ = DeckSimulator::E300;

  const bool skips = name == "SKIP" || (name == "SKIP300" && simulator_ == DeckSimulator::E300) ||
                     (name == "SKIP100" && simulator_ != DeckSimulator::E300);
  if (skips) {
    skipText(all);
    return finish(keyword);
  }
  const std::string_view behind = line.code.substr(word.size());
  const bool data = line.slash && current_.form != DeckForm::None && current_.form != DeckForm::Line;
  if (data) {
    note(DeckNote::Kind::DataOnLine, trim(behind), line.codeAt + word.size());
    const auto at = top().position + line.codeAt + word.size();
    current_.data.push_back({top().file, at, at, top().line});
    return feed(DeckLine{.code = trim(behind), .slash = true}, all, keyword);
  }
  emit(DeckSpan::Kind::Keyword, top().position, top().position + all.size());
  advance(all);
  if (name == "END") endOfDeck();
  if (name == "ENDINC" && levels_.size() > 1) {
    emit(DeckSpan::Kind::Behind, top().position, top().window->size());
    top().position = top().window->size();
  }
  return current_.form == DeckForm::None && finish(keyword);
}

/// Takes a line of data.
bool DeckScanner::feed(const DeckLine& line, std::string_view all, DeckKeyword& keyword) {
  for (const DeckSpan& span : trailing_) emit(DeckSpan::Kind::Keyword, span.begin, span.end);
  trailing_.clear();
  const std::uint64_t end = top().position + all.size();
  if (current_.data.empty() || current_.data.back().file != top().file)
    current_.data.push_back({top().file, top().position, end, top().line});
  current_.data.back().end = end;
  const bool onOwnLine = top().position == current_.offset && top().file == current_.file;
  emit(DeckSpan::Kind::Keyword, onOwnLine ? current_.offset : top().position, end);
  advance(all);
  if (current_.name == "PATHS") takePath(line);

  const bool empty = line.code == "/" && !inRecord_;
  if (current_.form == DeckForm::Line) {
    current_.records = 1;
    return finish(keyword);
  }
  inRecord_ = !line.slash;
  linesOfRecord_ = inRecord_ ? linesOfRecord_ + 1 : 0;
  if (inRecord_) return false;
  switch (current_.form) {
    case DeckForm::List:
    case DeckForm::Text:
      if (empty) return finish(keyword);
      ++current_.records;
      return false;
    case DeckForm::Array:
    case DeckForm::Words:
      current_.records = 1;
      return finish(keyword);
    case DeckForm::Records:
      ++current_.records;
      return --recordsLeft_ <= 0 && finish(keyword);
    case DeckForm::Branches:
    case DeckForm::Tables:
      ++current_.records;
      emptyLast_ = empty;
      return false;
    default:
      if (!empty) ++current_.records;
      return false;
  }
}

bool DeckScanner::finish(DeckKeyword& keyword) {
  if (current_.form == DeckForm::Branches && emptyLast_ && current_.records > 0) --current_.records;
  open_ = inRecord_ = emptyLast_ = false;
  linesOfRecord_ = 0;
  emitTrailing();
  keyword = std::move(current_);
  return true;
}

void DeckScanner::noteNotClosed() {
  current_.closed = false;
  note(DeckNote::Kind::NotClosed, firstWord(trim(top().window->line(top().position))));
}

/// Goes to the first line that can end the record: arrays are most of a deck, and nobody has asked for this
/// one.
void DeckScanner::skipNumbers() {
  constexpr std::size_t block = 4096;
  Level& level = top();
  const char lineEnd = level.window->lineEnd();
  std::uint64_t at = level.position;
  while (true) {
    const std::string_view text = level.window->from(at);
    if (text.empty()) break;
    const std::string_view piece = text.substr(0, block);
    if (!isPlain(piece, lineEnd, level.line)) {
      // Line by line as far as the block.
      const std::size_t stop = static_cast<std::size_t>(
          std::find_if(piece.begin(), piece.end(),
                       [](char c) {
                         return c == '/' || (isDeckLetter(c) && (c | 0x20) != 'd' && (c | 0x20) != 'e');
                       }) -
          piece.begin());
      const std::size_t lineBegin = piece.substr(0, stop).rfind(lineEnd);
      if (lineBegin != piece.npos) {
        level.line +=
            std::count(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(lineBegin) + 1, lineEnd);
        level.position = at + lineBegin + 1;
      }
      break;
    }
    const std::size_t lineBegin = piece.rfind(lineEnd);
    at += piece.size();
    if (lineBegin != piece.npos) level.position = at - piece.size() + lineBegin + 1;
  }
  if (level.position >= level.window->size()) level.position = level.window->size();
  if (current_.data.empty() || current_.data.back().file != level.file) return;
  if (level.position > current_.data.back().end) {
    for (const DeckSpan& span : trailing_) emit(DeckSpan::Kind::Keyword, span.begin, span.end);
    const std::uint64_t begin = trailing_.empty() ? current_.data.back().end : trailing_.back().end;
    trailing_.clear();
    if (level.position > begin) emit(DeckSpan::Kind::Keyword, begin, level.position);
    current_.data.back().end = level.position;
  }
}

/// Passes over the text between SKIP and ENDSKIP, both included.
void DeckScanner::skipText(std::string_view all) {
  emit(DeckSpan::Kind::Skipped, top().position, top().position + all.size());
  advance(all);
  while (top().position < top().window->size()) {
    const std::string_view next = top().window->line(top().position);
    const bool last = equalNoCase(firstWord(deckLine(next).code).substr(0, keywordLength), "ENDSKIP");
    emit(DeckSpan::Kind::Skipped, top().position, top().position + next.size());
    advance(next);
    if (last) return;
  }
  current_.closed = false;
  if (onNote)
    onNote({DeckNote::Kind::FileEnds, current_.file, current_.line, current_.offset, current_.name, {}});
}

/// The alias and the path of a record of PATHS.
void DeckScanner::takePath(const DeckLine& line) {
  std::string_view rest = line.code;
  while (!(rest = trim(rest)).empty() && rest != "/") {
    const bool quoted = isDeckQuote(rest[0]);
    const std::size_t end = quoted ? rest.find(rest[0], 1) : rest.find_first_of(" \t,'\"");
    const std::size_t stop = std::min(end, rest.size());
    std::string_view word = rest.substr(quoted ? 1 : 0, stop - (quoted ? 1 : 0));
    if (!quoted && stop == rest.size() && word.ends_with('/') && line.slash) word.remove_suffix(1);
    path_.emplace_back(word);
    rest.remove_prefix(std::min(stop + (quoted ? 1 : 0), rest.size()));
  }
  if (!line.slash) return;
  if (path_.size() >= 2) files_.setAlias(path_[0], path_[1]);
  path_.clear();
}

/// The name behind INCLUDE, on its own line or one of the next, and the "/" behind it.
std::string DeckScanner::includedName(std::string_view behindKeyword) {
  std::string name;
  bool slash = false;
  const auto take = [&](std::string_view text) {
    text = trim(text);
    if (text.empty() || text.starts_with("--")) return false;
    std::string_view behind;
    if (isDeckQuote(text[0])) {
      const std::size_t close = text.find(text[0], 1);
      name = trim(text.substr(1, close == text.npos ? text.npos : close - 1));
      behind = close == text.npos ? std::string_view() : text.substr(close + 1);
    } else {
      // A "/" divides folders too: the one that ends the record has nothing or a blank behind it.
      std::size_t end = text.find('/');
      while (end != text.npos && end + 1 < text.size() && !isDeckBlank(text[end + 1]))
        end = text.find('/', end + 1);
      const std::size_t comment = text.find(" --");
      behind = end < comment ? text.substr(end) : std::string_view();
      name = trim(text.substr(0, std::min({end, comment, text.size()})));
    }
    slash = deckLine(behind).slash;
    return true;
  };
  bool found = !behindKeyword.empty() && take(behindKeyword);
  while (!(found && slash) && top().position < top().window->size()) {
    const std::string_view all = top().window->line(top().position);
    const std::string_view code = deckLine(all).code;
    if (found && !code.empty() && code[0] != '/') break;
    if (!code.empty() && found) slash = true;
    if (!code.empty() && !found) found = take(all);
    emit(code.empty() ? DeckSpan::Kind::Comment : DeckSpan::Kind::Include, top().position,
         top().position + all.size());
    advance(all);
  }
  if (!slash) note(DeckNote::Kind::NoSlash, name);
  return name;
}

void DeckScanner::include(const DeckLine& line, std::string_view all) {
  emitTrailing();
  const Level at{top().file, nullptr, top().position, top().line};
  const std::string behind(trim(line.code.substr(std::string_view("INCLUDE").size())));
  const bool sameLine = !behind.empty() && isDeckQuote(behind[0]);
  if (sameLine) note(DeckNote::Kind::DataOnLine, behind, line.codeAt);
  emit(DeckSpan::Kind::Include, top().position, top().position + all.size());
  advance(all);
  const std::string name = includedName(sameLine ? behind : std::string_view());
  const auto tell = [&](DeckNote::Kind kind, const std::string& text) {
    if (onNote) onNote({kind, at.file, at.line, at.position, "INCLUDE", text});
  };
  FoundFile found = files_.find(name, at.file);
  const std::uint32_t file = files_.add({.path = found.path,
                                         .name = name,
                                         .parent = static_cast<std::int32_t>(at.file),
                                         .parentLine = at.line,
                                         .depth = files_[at.file].depth + 1});
  if (found.unknownAlias) tell(DeckNote::Kind::UnknownAlias, name);
  if (found.otherCase) tell(DeckNote::Kind::OtherCase, found.path);
  if (found.otherFolder) tell(DeckNote::Kind::OtherFolder, found.path);
  if (files_.isOpen(found.path, at.file)) {
    files_[file].state = DeckFile::State::Cycle;
    return tell(DeckNote::Kind::Cycle, found.path);
  }
  try {
    push(file, files_.open(file));
  } catch (const BadRecord& failure) {
    files_[file].state = DeckFile::State::Missing;
    files_[file].why = failure.diagnosis().found;
    tell(DeckNote::Kind::MissingFile, found.path);
  }
}

void DeckScanner::push(std::uint32_t file, std::shared_ptr<const ByteSource> source) {
  files_[file].state = DeckFile::State::Read;
  files_[file].size = source->size();
  if (levels_.size() >= buffersKept) top().window.reset();
  levels_.push_back({file, std::make_unique<TextWindow>(std::move(source)), 0, 1});
  const std::string_view begin = top().window->from(0);
  if (begin.starts_with("\xEF\xBB\xBF")) {
    emit(DeckSpan::Kind::Blank, 0, 3);
    top().position = 3;
  } else if (begin.starts_with("\xFF\xFE") || begin.starts_with("\xFE\xFF")) {
    note(DeckNote::Kind::Binary, "UTF-16");
    emit(DeckSpan::Kind::Behind, 0, top().window->size());
    top().position = top().window->size();
  }
}

/// Goes back to the file that names this one, at its end. Data go on there.
void DeckScanner::pop() {
  emitTrailing();
  files_[top().file].lines = top().line - 1;
  levels_.pop_back();
  if (!levels_.empty() && !top().window) top().window = std::make_unique<TextWindow>(files_.open(top().file));
}

/// END: nothing behind it counts, in no file.
void DeckScanner::endOfDeck() {
  while (!levels_.empty()) {
    if (!top().window) top().window = std::make_unique<TextWindow>(files_.open(top().file));
    emit(DeckSpan::Kind::Behind, top().position, top().window->size());
    files_[top().file].lines = top().line - 1;
    levels_.pop_back();
  }
}

void DeckScanner::advance(std::string_view all) {
  top().position += all.size();
  ++top().line;
}

void DeckScanner::emit(DeckSpan::Kind kind, std::uint64_t begin, std::uint64_t end) {
  if (onSpan && end > begin) onSpan({kind, top().file, begin, end});
}

void DeckScanner::emitTrailing() {
  if (onSpan) {
    for (const DeckSpan& span : trailing_) onSpan(span);
  }
  trailing_.clear();
}

void DeckScanner::note(DeckNote::Kind kind, std::string_view text, std::size_t column) {
  if (!onNote) return;
  onNote({kind, top().file, top().line, top().position + column, open_ ? current_.name : std::string(),
          std::string(text)});
}

/// What a line may have that simulators read otherwise.
void DeckScanner::look(const DeckLine& line, std::string_view all) {
  if (!onNote) return;
  if (line.openQuote) note(DeckNote::Kind::OpenQuote, line.code.substr(0, lineLength), line.codeAt);
  if (line.codeAt + line.code.size() > lineLength && wideFile_ != top().file) {
    wideFile_ = top().file;
    note(DeckNote::Kind::PastColumn128, {}, lineLength);
  }
  if (binaryFile_ != top().file && all.find('\0') != all.npos) {
    binaryFile_ = top().file;
    note(DeckNote::Kind::Binary, "characters 0", all.find('\0'));
  }
}

}  // namespace lumbarn
