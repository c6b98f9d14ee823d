#include "DeckLoader.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "../files/Extensions.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "DeckIncludes.h"
#include "DeckScheduleStore.h"
#include "ECLCommonFunctions.h"
#include "EclipseDictionary.h"
#include "KeywordParsers.h"
#include "qvEclipseKeys.h"

namespace lumbarn {

namespace {

enum Section : std::int32_t { RUNSPEC = 1, GRID, EDIT, PROPS, REGIONS, SOLUTION, SUMMARY, SCHEDULE, END };

/// Whether a line can name a keyword: most lines of a deck are numbers.
bool beginsWithLetter(std::string_view line) {
  const std::size_t first = line.find_first_not_of(" \t");
  if (first == line.npos) return false;
  const char letter = upperLetter(line[first]);
  return letter >= 'A' && letter <= 'Z';
}

bool isLetter(char c) { return c >= 'A' && c <= 'Z'; }

}  // namespace

bool DeckLoader::load(const std::string& zDeckFile) {
  const FileName name(zDeckFile);
  if (schedule()) schedule()->deckFile(zDeckFile);
  if (!loadFile(name.folder, zDeckFile.substr(name.folder.size()), false)) return false;
  finishSchedule();
  return true;
}

bool DeckLoader::load(std::shared_ptr<const ByteSource> source) {
  const std::string path = source->path();
  if (schedule()) schedule()->deckFile(path);
  DeckLines file(std::move(source));
  begin(FileName(path).folder);
  if (!readFile(file, path, false)) return false;
  finishSchedule();
  return true;
}

void DeckLoader::begin(const std::string& zDeckPath) {
  zDeckPath_ = zDeckPath;
  deck_.lines.qCaptureSchedule = options_.RecordScheduleDeck;
  deck_.lines.qCaptureReportStep = false;
}

void DeckLoader::finishSchedule() {
  if (!schedule()) return;
  schedule()->finish();
  schedule()->lines(deck_.lines.zSchedule, deck_.lines.iSectionLine);
  schedule()->summaryKeywords(deck_.summary);
  const bool compositional = deck_.runspec.qIsBlackOil || deck_.runspec.nComponents > 0;
  schedule()->runKind(deck_.runspec.qIsFrontSim ? DeckRunKind::FrontSim
                      : compositional           ? DeckRunKind::Compositional
                                                : DeckRunKind::BlackOil);
}

bool DeckLoader::loadFile(const std::string& zPath, const std::string& zName, bool include,
                          const DeckLines* includer) {
  const std::string path = pathToOpen(zPath, zName);
  std::string why;
  const auto file = DeckLines::open(path, why);
  if (!file) {
    session_.diagnose(Diagnosis{.message = include ? Message::DeckMissingFile : Message::FileOpen,
                                .path = includer ? includer->path() : path,
                                .line = includer ? includer->currentLine() : 0,
                                .found = includer ? path + ": " + why : why});
    return false;
  }
  if (!include) begin(zPath);
  return readFile(*file, path, include);
}

bool DeckLoader::readFile(DeckLines& file, const std::string& path, bool include) {
  open_.push_back(std::filesystem::path(path).lexically_normal().string());
  const bool read = readLines(file, include);
  open_.pop_back();
  return read;
}

bool DeckLoader::readLines(DeckLines& file, bool include) {
  std::string raw;
  while (!qEndSeen_) {
    // Deliberate: a file without lines is no success.
    if (!file.readLine(raw)) return false;
    yield(file);
    if (takeLine(file, raw, include) == Next::Stop) break;
    if (!file.hasMoreData()) {
      if (!include) {
        deck_.lines.iSectionLine[END - 1] = deck_.lines.nSchedule();
        qEndSeen_ = true;
      }
      break;
    }
    if (session_.cancelled()) throw LoadCanceled();
  }
  if (!include && options_.RecordScheduleDeck)
    deck_.lines.qCaptureSchedule = deck_.lines.qCaptureReportStep = false;
  return true;
}

void DeckLoader::yield(const DeckLines& file) {
  constexpr std::int64_t linesBetween = 1000;
  if (file.currentLine() % linesBetween != 0) return;
  if (session_.Container && open_.size() == 1)
    session_.Container->fraction(static_cast<double>(file.offset()) / static_cast<double>(file.size()));
  if (session_.yield()) throw LoadCanceled();
}

DeckLoader::Next DeckLoader::takeLine(DeckLines& file, const std::string& raw, bool include) {
  const bool candidate = beginsWithLetter(raw);
  DeckLineStores& lines = deck_.lines;
  if (lines.qInEDIT && !candidate) lines.zEDIT.push_back(raw);
  if (!candidate && !lines.qCaptureSchedule && !lines.qCaptureReportStep) return Next::GoOn;
  std::string line = processEclipseLine(raw, true);
  if (checkifEclipseCommentLine(raw) || checkifEclipseCommentLine(line)) return Next::GoOn;
  if (const std::size_t slash = line.find('/'); slash != line.npos) {
    auto place = static_cast<std::int32_t>(slash) + 1, length = static_cast<std::int32_t>(line.size());
    bool qOK = false;
    updateEclipseLine(line, place, length, qOK, session_);
  }
  const std::string field = ExtractKeyword(line);
  if (field == "FRONTSIM") deck_.runspec.qIsFrontSim = true;
  if (field == "INCLUDE") {
    takeInclude(file, raw);
    return Next::GoOn;
  }
  captureKeywordLine(field, raw);
  if (field.empty() || !isLetter(field.front())) return Next::GoOn;
  return takeKeyword(file, field, raw, include);
}

void DeckLoader::captureKeywordLine(std::string_view field, const std::string& raw) {
  DeckLineStores& lines = deck_.lines;
  if (lines.qCaptureSchedule) lines.zSchedule.push_back(raw);
  if (field == "END" && !lines.zReportStep.empty() && schedule()) {
    schedule()->reportStepLines(lines.zReportStep, lines.nSchedule() + 1);
    lines.zReportStep.clear();
  }
  // Which step is the current one is the business of DATES and TSTEP, which nothing parses yet: the lines of
  // all steps come together.
  if (lines.qCaptureReportStep && field != "END" && field != "DATES" && field != "TSTEP")
    lines.zReportStep.push_back(raw);
}

DeckLoader::Next DeckLoader::takeKeyword(DeckLines& file, const std::string& field, const std::string& raw,
                                         bool include) {
  DeckLineStores& lines = deck_.lines;
  std::int32_t row = 0, sectionOfRow = 0, keywordClass = 0, section = 0;
  bool qOK = false;
  lookupKeyword(field, row, sectionOfRow, keywordClass, reading_.iSection, qOK, session_);
  if (row > 0 && isSectionKeyword(field, section) && beginSection(section, raw) == Next::Stop)
    return Next::Stop;
  if (row > 0 && field == "END") {
    lines.iSectionLine[END - 1] = lines.nSchedule();
    qEndSeen_ = true;
    return Next::Stop;
  }
  if (row > 0 && field == "ENDINC" && include) return Next::Stop;
  if (lines.qInEDIT) {
    lines.zEDIT.push_back(raw);
  } else if (row > 0) {
    if (field == "PATHS") takePaths(file);
    noteFileForm(field);
    parse(file, field);
  }
  return Next::GoOn;
}

DeckLoader::Next DeckLoader::beginSection(std::int32_t section, const std::string& raw) {
  DeckLineStores& lines = deck_.lines;
  const auto mark = [&] { lines.iSectionLine[static_cast<std::size_t>(section) - 1] = lines.nSchedule(); };
  if (options_.RUNSPECOnly && section != RUNSPEC) {
    qEndSeen_ = true;
    return Next::Stop;
  }
  if (deck_.runspec.qIsFrontSim || section == RUNSPEC) {
    mark();
    return Next::GoOn;
  }
  lines.qInEDIT = section == EDIT;
  switch (section) {
    case GRID:  // the lines of RUNSPEC are dropped
      lines.qCaptureSchedule = false;
      lines.zSchedule.clear();
      lines.iSectionLine.fill(0);  // those of sections that came before GRID, too
      break;
    case SUMMARY:
    case SCHEDULE:
      if (lines.qCaptureSchedule != options_.RecordScheduleDeck) {
        lines.qCaptureSchedule = options_.RecordScheduleDeck;
        if (lines.qCaptureSchedule) lines.zSchedule.push_back(raw);
      }
      if (section == SCHEDULE) lines.qCaptureReportStep = options_.RecordReportStepKeywords;
      mark();
      break;
    default:
      break;
  }
  return Next::GoOn;
}

void DeckLoader::takeInclude(DeckLines& file, const std::string& raw) {
  DeckLineStores& lines = deck_.lines;
  std::vector<std::string> record;
  std::int32_t count = 0;
  bool qOK = false;
  const bool schedule = std::exchange(lines.qCaptureSchedule, false);
  const bool reportStep = std::exchange(lines.qCaptureReportStep, false);
  reading_.readFileNameArguments(file, record, count, qOK);
  lines.qCaptureSchedule = schedule;
  lines.qCaptureReportStep = reportStep;
  const std::int32_t section = reading_.iSection;
  const bool skipped = section == GRID || section == EDIT || section == REGIONS;
  if (skipped && !options_.ProcessAll && !deck_.runspec.qIsFrontSim) {
    if (!lines.qInEDIT) return;
    lines.zEDIT.push_back(raw);
    lines.zEDIT.insert(lines.zEDIT.end(), record.begin(), record.begin() + count);
    return;
  }
  std::string name;
  getIncludeFileName(record, count, name, qOK, false, aliases_, session_);
  if (!qOK || name.empty()) return;
  if (!isExcluded(name, options_.zExcludes) && !analysePath(name).qUnixPath) {
    readInclude(file, name);
    return;
  }
  deck_.zIncludes.push_back(listedName(name));
  lines.capture(raw);
  lines.capture("  '" + deck_.zIncludes.back() + "' /");
}

void DeckLoader::readInclude(const DeckLines& file, const std::string& zName) {
  const std::string path = std::filesystem::path(pathToOpen(zDeckPath_, zName)).lexically_normal().string();
  if (std::find(open_.begin(), open_.end(), path) != open_.end()) {
    session_.diagnose(Diagnosis{.message = Message::DeckCycle,
                                .path = file.path(),
                                .line = file.currentLine(),
                                .found = zName,
                                .action = "not read again"});
    return;
  }
  loadFile(zDeckPath_, zName, true, &file);
}

void DeckLoader::takePaths(DeckLines& file) {
  for (bool qOK = true; qOK && file.hasMoreData();) {
    std::vector<std::string> record, words;
    std::int32_t count = 0;
    bool qSplit = false;
    reading_.readFileNameArguments(file, record, count, qOK);
    std::string joined;
    for (std::int32_t i = 0; i < count; ++i) {
      const std::string& line = record[static_cast<std::size_t>(i)];
      if (!checkifEclipseCommentLine(line)) joined += line + ' ';
    }
    // "/" in a path is no end of the record, which has been found already.
    std::replace(joined.begin(), joined.end(), '/', '\\');
    processEclipseArgumentLine(joined, words, count, qSplit, session_);
    if (!qSplit || count < 2) return;
    std::replace(words[1].begin(), words[1].end(), '\\', '/');
    aliases_[words[0]] = words[1];
  }
}

void DeckLoader::noteFileForm(std::string_view field) {
  struct Form {
    std::string_view zKeyword;
    DeckRunspec::OutputForm DeckRunspec::*files;
    DeckFileForm form;
  };
  static constexpr Form forms[] = {
      {"MULTIN", &DeckRunspec::input, DeckFileForm::Multiple},
      {"UNIFIN", &DeckRunspec::input, DeckFileForm::Unified},
      {"MULTOUT", &DeckRunspec::output, DeckFileForm::Multiple},
      {"UNIFOUT", &DeckRunspec::output, DeckFileForm::Unified},
      {"MULTOUTS", &DeckRunspec::summaryOutput, DeckFileForm::Multiple},
      {"UNIFOUTS", &DeckRunspec::summaryOutput, DeckFileForm::Unified},
      {"MULTSAVE", &DeckRunspec::save, DeckFileForm::Multiple},
      {"UNIFSAVE", &DeckRunspec::save, DeckFileForm::Unified},
  };
  DeckRunspec& runspec = deck_.runspec;
  const std::int32_t line = deck_.lines.nSchedule();
  bool noted = true;
  if (field == "SAVE") {
    runspec.iSAVELine = line;
  } else if (field == "RPTRST" && reading_.iSection == SCHEDULE) {
    runspec.iRPTRSTLine = line;
  } else if (field == "SKIPREST") {
    runspec.iSKIPRESTLine = line;
  } else {
    const auto* form = std::find_if(std::begin(forms), std::end(forms),
                                    [&](const Form& row) { return row.zKeyword == field; });
    noted = form != std::end(forms);
    if (noted) {
      DeckRunspec::OutputForm& files = runspec.*form->files;
      if (line >= files.iLine || !options_.RecordScheduleDeck) files = {form->form, line};
      if (form->files == &DeckRunspec::save) runspec.qNoRestartGather = true;
    }
  }
  if (noted && schedule()) schedule()->fileForm(field, line);
}

void DeckLoader::parse(DeckLines& file, std::string_view field) {
  const HostKeyword keyword{.zKeyword = field,
                            .deck = deck_,
                            .options = options_,
                            .reading = reading_,
                            .file = file,
                            .session = session_,
                            .zDeckPath = zDeckPath_};
  const bool summary = reading_.iSection == SUMMARY;
  const ParserRow* row = nullptr;
  if (!summary && processEclipseKeyword(field)) row = findParser(parserOfKeyword(field));
  const char* const routine = summary ? "parseSUMMARYKeyWord" : row ? row->zRoutine.data() : "";
  try {
    if (summary && (field.front() == 'F' || field.front() == 'W')) parseSUMMARYKeyWord(keyword);
    if (row) row->parse(keyword);
  } catch (const LoadCanceled&) {
    throw;
  } catch (...) {
    reportCurrentException(session_, "qvEclipseDat", routine);
  }
}

}  // namespace lumbarn
