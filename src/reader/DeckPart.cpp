#include "DeckPart.h"

#include <utility>

#include "../files/FileChoice.h"
#include "../files/Recogniser.h"

namespace lumbarn {

void DeckPart::load() {
  yield();
  auto deck = std::make_unique<qvEclipseDat>(session());
  const std::string path = fileOfRun(options().FileName, FileKind::Deck);
  if (!deck->CheckifEclipseFile(path)) failWith(refusal(path, FileKind::Deck));
  setOrigin();
  deck->zDeckFile = path;
  deck->RecordScheduleDeck = options().RecordScheduleDeck;
  deck->RecordReportStepKeywords = options().RecordReportStepKeywords;
  // Excluded files are skipped only while the schedule is captured.
  if (deck->RecordScheduleDeck || deck->RecordReportStepKeywords)
    require([&](bool& qDone) { deck->setIncFileExcludes(zExcludes, qDone); });
  deck->PrepareBaseRun = options().PrepareBaseRun;
  deck->RecordComments = options().RecordComments;
  deck->ProcessCorners = options().ProcessCorners;
  deck->RUNSPECOnly = options().RUNSPECOnly;
  deck->ProcessAll = options().ProcessAll;
  deck->OffSet = options().OffSet;
  require([&](bool& qDone) { deck->LoadEclipseDataFile(qDone); });
  deck_ = std::move(deck);
}

bool DeckPart::answersFor(const ReaderPart& other) const {
  constexpr std::int32_t deckCode = 25;
  return held() && (options().whichtype == deckCode || !other.held());
}

ModelFlags DeckPart::flags() const {
  ModelFlags flags;
  if (!deck_) return flags;
  const DeckRunspec& runspec = deck_->contents().runspec;
  const DeckPhases& phases = runspec.phases;
  flags.Oil = phases.Oil;
  flags.Gas = phases.Gas;
  flags.Water = phases.Water;
  flags.DissolvedGas = phases.DissolvedGas;
  flags.VapourisedOil = phases.VapourisedOil;
  flags.Brine = phases.Brine;
  flags.Solvent = phases.Solvent;
  flags.Surfactant = phases.Surfactant;
  flags.CoalBedMethane = phases.CoalBedMethane;
  flags.Foam = phases.Foam;
  flags.DualPorosity = runspec.qDualPorosity;
  flags.DualPermeability = runspec.qDualPermeability;
  flags.Miscible = runspec.qMiscible;
  flags.RockCompaction = runspec.qRockCompaction;
  return flags;
}

}  // namespace lumbarn
