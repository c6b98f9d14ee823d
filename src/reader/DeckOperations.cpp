#include "../deck/EclipseDictionary.h"
#include "ReaderLoad.h"

namespace lumbarn {

void qvEclipseReader::ReadDATFile(bool& qOK) {
  load(parts_->deck, "ReadDATFile", qOK, [&] { parts_->deck.load(); });
}

bool qvEclipseReader::EclipseKeyword(std::string_view zKeyword, std::int32_t iSection) const {
  return EclipseDictionary::shared().find(zKeyword, iSection).has_value();
}

qvEclipseDat* qvEclipseReader::Deck() { return parts_->deck.deck(); }

const qvEclipseDat* qvEclipseReader::Deck() const { return parts_->deck.deck(); }

void qvEclipseReader::GetEclipseDAT(std::int32_t iSection, std::string_view zKeyWord,
                                    std::vector<std::string>& zArguments, std::int32_t& nArguments,
                                    bool& qOK) const {
  fetch(parts_->deck, "GetEclipseDAT", qOK, [&](DeckPart& part, bool& qDone) {
    part.deck()->getEclipseKeyWord(iSection, zKeyWord, zArguments, nArguments, qDone);
  });
}

void qvEclipseReader::GetEclipseEQUIL(std::int32_t iRegion, std::vector<float>& sValues, bool& qOK) const {
  fetch(parts_->deck, "GetEclipseEQUIL", qOK,
        [&](DeckPart& part, bool& qDone) { part.deck()->getEQUIL(iRegion, sValues, qDone); });
}

DeckScalar qvEclipseReader::GetEclipseKeyWordArgument(std::string_view zKeyWord) const {
  return Deck() ? Deck()->getKeywordArgument(zKeyWord) : DeckScalar(false);
}

DeckScalar qvEclipseReader::getModelProperty(std::int32_t iProperty) const {
  return Deck() ? Deck()->getModelProperty(iProperty) : DeckScalar(false);
}

void qvEclipseReader::getPINCH(std::int32_t iPinch, float& sThreshold, std::string& zGap, double& dMaxGap,
                               std::string& zTransmissibility, std::string& zMultiplier, bool& qOK) const {
  fetch(parts_->deck, "getPINCH", qOK, [&](DeckPart& part, bool& qDone) {
    part.deck()->getPINCH(iPinch, sThreshold, zGap, dMaxGap, zTransmissibility, zMultiplier, qDone);
  });
}

void qvEclipseReader::getPINCHXY(float& sX, float& sY, bool& qOK) const {
  fetch(parts_->deck, "getPINCHXY", qOK,
        [&](DeckPart& part, bool& qDone) { part.deck()->getPINCHXY(sX, sY, qDone); });
}

void qvEclipseReader::getMAPAXES(std::array<double, 6>& dMapAxes, bool& qOK) const {
  fetch(parts_->deck, "getMAPAXES", qOK,
        [&](DeckPart& part, bool& qDone) { part.deck()->getMAPAXES(dMapAxes, qDone); });
}

void qvEclipseReader::getOffSet(double& dX, double& dY, bool& qOK) const {
  fetch(parts_->deck, "getOffSet", qOK,
        [&](DeckPart& part, bool& qDone) { part.deck()->getOffSet(dX, dY, qDone); });
}

void qvEclipseReader::getEDITLines(std::vector<std::string>& zLines, std::int32_t& nLines, bool& qOK) const {
  fetch(parts_->deck, "getEDITLines", qOK,
        [&](DeckPart& part, bool& qDone) { part.deck()->GetEDITLines(zLines, nLines, qDone); });
}

void qvEclipseReader::getFAULTS(std::vector<std::string>& zNames, std::int32_t& nFaults,
                                std::vector<std::int32_t>& nSegments, std::vector<float>& sMultipliers,
                                std::int32_t& nMax, bool& qOK) const {
  fetch(parts_->deck, "getFAULTS", qOK, [&](DeckPart& part, bool& qDone) {
    part.deck()->getFAULTS(zNames, nFaults, nSegments, sMultipliers, nMax, qDone);
  });
}

void qvEclipseReader::GetFaultConnections(std::int32_t iFault, std::vector<std::int32_t>& iI1,
                                          std::vector<std::int32_t>& iI2, std::vector<std::int32_t>& iJ1,
                                          std::vector<std::int32_t>& iJ2, std::vector<std::int32_t>& iK1,
                                          std::vector<std::int32_t>& iK2, std::vector<std::string>& zFaces,
                                          bool& qOK) const {
  fetch(parts_->deck, "GetFaultConnections", qOK, [&](DeckPart& part, bool& qDone) {
    part.deck()->GetFaultConnections(iFault, iI1, iI2, iJ1, iJ2, iK1, iK2, zFaces, qDone);
  });
}

void qvEclipseReader::getIncludeFiles(std::vector<std::string>& zFiles, std::int32_t& nFiles,
                                      bool& qOK) const {
  fetch(parts_->deck, "getIncludeFiles", qOK,
        [&](DeckPart& part, bool& qDone) { part.deck()->getIncludeFiles(zFiles, nFiles, qDone); });
}

std::int32_t qvEclipseReader::NumIncludeFiles() const {
  return Deck() ? static_cast<std::int32_t>(Deck()->contents().zIncludes.size()) : 0;
}

void qvEclipseReader::getIncFileExcludes(std::vector<std::string>& zFiles, std::int32_t& nFiles,
                                         bool& qOK) const {
  perform("getIncFileExcludes", qOK, [&] {
    zFiles = parts_->deck.zExcludes;
    nFiles = NumIncFileSpecsToExclude();
  });
}

void qvEclipseReader::setIncFileExcludes(const std::vector<std::string>& zFiles, bool& qOK) {
  perform("setIncFileExcludes", qOK, [&] { parts_->deck.zExcludes = zFiles; });
}

std::int32_t qvEclipseReader::NumIncFileSpecsToExclude() const {
  return static_cast<std::int32_t>(parts_->deck.zExcludes.size());
}

bool qvEclipseReader::FMTOUT() const { return Deck() && Deck()->FMTOUT(); }

bool qvEclipseReader::UNIFOUTRST() const { return Deck() && Deck()->UNIFOUTRST(); }

bool qvEclipseReader::PinchXY() const { return Deck() && Deck()->PinchXY(); }

std::int32_t qvEclipseReader::NumberPINCH() const { return Deck() ? Deck()->NumberPINCH() : 0; }

void qvEclipseReader::GetScheduleLines(std::vector<std::string>& zSchedule, std::int32_t& nSchedule,
                                       bool& qOK) const {
  fetch(parts_->deck, "GetScheduleLines", qOK,
        [&](DeckPart& part, bool& qDone) { part.deck()->GetScheduleLines(zSchedule, nSchedule, qDone); });
}

void qvEclipseReader::GetScheduleLinesWithPointers(std::vector<std::string>& zSchedule,
                                                   std::int32_t& nSchedule,
                                                   std::vector<std::int32_t>& iPointers,
                                                   std::int32_t& nPointers, bool& qOK) const {
  fetch(parts_->deck, "GetScheduleLinesWithPointers", qOK, [&](DeckPart& part, bool& qDone) {
    part.deck()->GetScheduleLinesWithPointers(zSchedule, nSchedule, iPointers, nPointers, qDone);
  });
}

}  // namespace lumbarn
