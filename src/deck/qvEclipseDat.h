#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "DeckContents.h"
#include "DeckReading.h"
#include "DeckScalar.h"

namespace lumbarn {

/// The data deck of a run as hosts know it: set the options, let `CheckifEclipseFile` look at a file, load
/// it, then ask. One object serves one deck and one load. `Deck` is the form without the habits that hosts
/// rely on.
///
/// Operations with qOK never throw and set it False on entry. What cannot be understood in a deck is skipped;
/// what a parser fails at is reported as a fault, and the load goes on. Warnings that a screen would show are
/// diagnoses of the session. Outputs of failed operations hold nothing.
class LUMBARN_API qvEclipseDat : public DeckReading, public DeckLoadOptions {
 public:
  explicit qvEclipseDat(Session& session = Session::process()) : DeckReading(session) {}

  std::string zDeckFile;
  bool PrepareBaseRun = false;  ///< this and the next: carried only
  bool RecordComments = false;

  /// Whether a file is a deck, by its first 1000 lines; see `recogniseHostDeck`.
  bool CheckifEclipseFile(const std::string& zFile) const;
  /// Reads zDeckFile. qOK False when it cannot be opened, has no line, or the load was cancelled; an include
  /// that is not there is reported and left out.
  void LoadEclipseDataFile(bool& qOK);
  /// The same from anywhere; the path of the source is the name of the deck.
  void readDeck(std::shared_ptr<const ByteSource> source, bool& qOK);
  /// Reads one file into what is held, as a deck or as an include.
  void LoadEclipseData(const std::string& zPath, const std::string& zName, bool& qOK, bool qInclude);
  /// Whether a name fits one of `zExcludes`.
  void ExcludeFile(const std::string& zName, bool& qOK, bool& qExcluded) const;

  // --- Keywords and options

  /// The arguments of a keyword that is kept as text, in a section or, with -1, in any.
  void getEclipseKeyWord(std::int32_t iOfSection, std::string_view zKeyWord,
                         std::vector<std::string>& zArguments, std::int32_t& nArguments, bool& qOK) const;
  /// The names of these keywords in one section; of all with a section below 1.
  void getEclipseKeyWordList(std::int32_t iOfSection, std::vector<std::string>& zKeyWords,
                             std::int32_t& nKeyWords, bool& qOK) const;
  /// The single that DRSDT, DRVDT, DZMTRX, SIGMA or SIGMAGD gives, the text of TITLE; -32768 (a single) for
  /// what is not given, and for any other keyword.
  DeckScalar getKeywordArgument(std::string_view zKeyWord) const;
  /// Whether COORD or ZCORN was read, or skipped for want of `ProcessCorners`; False for other names.
  bool IsKeyWord(std::string_view zKeyWord) const;
  /// One property by its number; an empty text for a number that has none.
  ///
  /// 1 to 3 sizes of the grid; 5 to 9 OIL, GAS, WATER, DISGAS, VAPOIL; 11 FOAM; 12 SURFACT; 22 the unit
  /// system; 24 DUALPORO; 25 DUALPERM; 26 BRINE; 27 SOLVENT; 28 NODPPM; 29 MISCIBLE; 30 COAL; 34, 35 day and
  /// month of START; 36 ROCKCOMP. Always False: 4, 10, 13, 15 to 19, 31, 33; always 0: 21.
  DeckScalar getModelProperty(std::int32_t iProperty) const;
  /// DIMENS (three words) or TABDIMS (its first six); qOK False for any other keyword.
  void getIntegerKeyword(std::string_view zKeyWord, std::vector<std::int32_t>& iArgs, std::int32_t& nArgs,
                         bool& qOK) const;
  std::int32_t NumberFIPSets() const { return deck_.runspec.iREGDIMS[2]; }
  std::int32_t NumberFIPRegions() const { return deck_.runspec.tables.regions; }
  bool FMTOUT() const { return deck_.runspec.qFMTOUT; }
  bool UNIFOUTRST() const { return deck_.runspec.output.form == DeckFileForm::Unified; }
  /// The record of EQUIL of a region, from 1: the words that were given, -32768 for those that were not.
  void getEQUIL(std::int32_t iRegion, std::vector<float>& sValues, bool& qOK) const;

  // --- Lines and files

  /// SUMMARY and SCHEDULE with `RecordScheduleDeck`. The array has one empty line when there are none.
  void GetScheduleLines(std::vector<std::string>& zSchedule, std::int32_t& nSchedule, bool& qOK) const;
  /// The same, and for each section and END how many lines there are up to it.
  void GetScheduleLinesWithPointers(std::vector<std::string>& zSchedule, std::int32_t& nSchedule,
                                    std::vector<std::int32_t>& iPointers, std::int32_t& nPointers,
                                    bool& qOK) const;
  /// All lines of EDIT, with the one that begins it. The array has one empty line when there are none.
  void GetEDITLines(std::vector<std::string>& zLines, std::int32_t& nLines, bool& qOK) const;
  void getIncFileExcludes(std::vector<std::string>& zFiles, std::int32_t& nFiles, bool& qOK) const;
  void setIncFileExcludes(const std::vector<std::string>& zFiles, bool& qOK);
  /// Files that INCLUDE names and that were not read, because they are excluded or absolute.
  void getIncludeFiles(std::vector<std::string>& zFiles, std::int32_t& nFiles, bool& qOK) const;

  // --- Grid. Grids count from 1: the global one, then the local ones in the order of the deck.

  std::int32_t nGrids() const { return static_cast<std::int32_t>(deck_.grids.records.size()); }
  void CheckGridIndex(std::int32_t iGrid, bool& qOK) const;
  /// Prepares the corners of a grid whose COORD and ZCORN were read, with the option `OffSet` first taking
  /// the offset off its pillars, and counts its active cells.
  void createcorners(std::int32_t iGrid, bool& qOK);
  /// sCorners(24, nCells): all cells, as the rows of `Hadrick`. After `createcorners` only.
  void getcorners(std::int32_t iGrid, XYData& sCorners, std::int32_t& nCells, bool& qOK) const;
  /// 0 or 1 for each cell, from a list that goes with the cells. Deliberate: a list of another length is no
  /// failure, and has no effect.
  void setACTNUM(std::int32_t iGrid, const std::vector<std::int32_t>& iACTNUM, bool& qOK);
  void getACTNUM(std::int32_t iGrid, std::vector<std::int32_t>& iACTNUM, bool& qOK) const;
  bool OffSet = false;
  /// What `createcorners` took off x and y; 0 without the option.
  void getOffSet(double& dX, double& dY, bool& qOK) const;
  /// X1, Y1, X2, Y2, X3, Y3. qOK False when the deck has none.
  void getMAPAXES(std::array<double, 6>& dMapAxes, bool& qOK) const;

  void getFAULTS(std::vector<std::string>& zNames, std::int32_t& nFaults,
                 std::vector<std::int32_t>& nSegments, std::vector<float>& sMultipliers, std::int32_t& nMax,
                 bool& qOK) const;
  /// The segments of one fault, from 1.
  void GetFaultConnections(std::int32_t iFault, std::vector<std::int32_t>& iI1,
                           std::vector<std::int32_t>& iI2, std::vector<std::int32_t>& iJ1,
                           std::vector<std::int32_t>& iJ2, std::vector<std::int32_t>& iK1,
                           std::vector<std::int32_t>& iK2, std::vector<std::string>& zFaces, bool& qOK) const;
  /// Records of PINCH or PINCHOUT that are in force.
  std::int32_t NumberPINCH() const { return static_cast<std::int32_t>(deck_.grids.pinches.size()); }
  /// One of them, from 1.
  void getPINCH(std::int32_t iPinch, float& sThreshold, std::string& zGap, double& dMaxGap,
                std::string& zTransmissibility, std::string& zMultiplier, bool& qOK) const;
  bool PinchXY() const { return deck_.grids.qPinchXY; }
  /// The thresholds along X and Y. qOK False without PINCHXY.
  void getPINCHXY(float& sX, float& sY, bool& qOK) const;

  /// Everything that is kept, as data.
  const DeckContents& contents() const { return deck_; }

 protected:
  void captureLine(std::string_view zLine) override { deck_.lines.capture(zLine); }

 private:
  const DeckGridRecord& grid(std::int32_t iGrid) const;

  DeckContents deck_;
};

}  // namespace lumbarn
