#include "ReaderPart.h"

#include <filesystem>
#include <utility>

#include "../files/Recogniser.h"
#include "../shapes/OnlyList.h"

namespace lumbarn {

namespace {

std::vector<std::string> withText(std::vector<std::string> patterns, const std::string& text) {
  if (!text.empty()) patterns.push_back(text);
  return patterns;
}

}  // namespace

ECLIPSEINFO& ReaderPart::sharedSelection() const { return session().part<SelectionState>().xInfo; }

void ReaderPart::failWith(Diagnosis diagnosis) const {
  session().diagnose(std::move(diagnosis));
  throw ReportedFailure();
}

void ReaderPart::yield() const {
  if (session().yield()) throw LoadCanceled();
}

bool ReaderPart::isOfOtherType(const std::string& path, FileKind kind) const {
  if (meaningOf(FileName(path).extension).kind == kind) return false;
  const Recognised found = recogniseFile(path);
  return found.byContent && found.kind != kind;
}

void ReaderPart::setForm(const FormFlags& form) const {
  options().Formatted = form.Formatted;
  options().UNIX = form.UNIX;
  options().byteSwap = form.byteSwap;
}

void ReaderPart::setOrigin() const {
  if (options().zOrigin.empty()) options().zOrigin = FileName(options().FileName).base;
}

std::vector<std::string> ReaderPart::onlyPatterns() const {
  return withText(options().VectorPatterns, options().zOnly);
}

std::vector<std::string> ReaderPart::exceptPatterns() const {
  return withText(options().ExceptPatterns, options().zExcept);
}

ECLIPSEINFO& ReaderPart::offerArrays(const std::vector<std::string>& names) const {
  auto& shared = sharedSelection();
  bool qOK = false;
  InitEclipseINFO(shared, qOK);
  shared.nSolutionVectors = static_cast<std::int32_t>(names.size());
  shared.bSolutionNames = ByteTable(onlyNameWidth, names.size());
  shared.qSolutionChosen.assign(names.size(), true);
  for (std::size_t i = 0; i < names.size(); ++i) shared.bSolutionNames.put(i + 1, 1, onlyNameWidth, names[i]);
  return shared;
}

bool ReaderPart::hasIndexFolder(const std::string& path) const {
  if (!options().IndexFolder.empty()) return true;
  session().diagnose(Diagnosis{.message = Message::IndexFolder,
                               .path = path,
                               .expected = "IndexFolder",
                               .action = "no index was written"});
  return false;
}

std::string ReaderPart::indexPath(const std::string& path, std::string_view extension) const {
  const auto name = FileName(path).base + (options().Formatted ? ".F" : ".") + std::string(extension);
  return (std::filesystem::path(options().IndexFolder) / name).string();
}

}  // namespace lumbarn
