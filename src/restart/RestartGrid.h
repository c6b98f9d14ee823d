#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "../arrays/ArrayTable.h"
#include "../arrays/ColumnTable.h"

namespace lumbarn {

/// One grid of a report step: the global one, "ROOT", or a local one. Numbers are those of its `INTEHEAD`; a
/// word that the header does not have leaves its field as it is.
///
/// The well and connection tables count rows and columns from 1. Each is there when the boolean beside it is
/// True, and empty otherwise.
struct RESTARTGRID {
  std::string GridName = "ROOT";
  std::int32_t iSeqnum = -1;  ///< report step
  std::int32_t nWells = 0;    ///< wells in this step
  std::int32_t nCWMax = 0;    ///< nCWMAX once a connection record was taken: rows of its tables
  std::int32_t nGroups = 0;
  double dTime = 0;   ///< report time in days
  std::string zDate;  ///< "15 JUL 2003", or with a time of day "15 JUL 2003 6:30"
  std::string Origin;
  std::int32_t iUnits = 0;  ///< 1 metric, 2 field, 3 laboratory
  std::int32_t Nx = 0;
  std::int32_t Ny = 0;
  std::int32_t Nz = 0;
  std::int64_t nCells = 0;
  std::int32_t nActive = 0;
  std::int32_t iPhases = 0;   ///< bit 1 oil, 2 water, 4 gas
  std::int32_t iProgram = 0;  ///< simulator code; 0 when the header does not state it
  std::int32_t iDay = -1;
  std::int32_t iMonth = -1;
  std::int32_t iYear = -1;
  std::int32_t nWellsHeader = 0;  ///< as nWells
  std::int32_t nIWELZ = 0;  ///< words per well in IWEL, SWEL, XWEL, ZWEL; 0 after a record that does not fit
  std::int32_t nSWELZ = 0;
  std::int32_t nXWELZ = 0;
  std::int32_t nZWELZ = 0;
  std::int32_t nICONZ = 0;  ///< words per connection in ICON, SCON, XCON
  std::int32_t nSCONZ = 0;
  std::int32_t nXCONZ = 0;
  std::int32_t nCWMAX = 0;  ///< connection slots per well
  std::int32_t nIGRPZ = 0;  ///< words per group
  std::int32_t nSGRPZ = 0;
  std::int32_t nXGRPZ = 0;
  std::int32_t nZGRPZ = 0;
  std::int32_t iWord21 = 0;
  std::int32_t iAquiferSizes[8] = {};
  std::int32_t nConnections = 0;  ///< of all wells, by IWEL
  bool qWellDataValid = false;    ///< the word counts are usable
  bool qE100 = true;              ///< False for the simulator with code 300
  bool qLogi15 = false;           ///< dual porosity

  bool qIWEL = false;
  bool qSWEL = false;
  bool qXWEL = false;
  bool qZWEL = false;
  bool qZGRP = false;
  bool qICON = false;
  bool qSCON = false;

  ArrayTable arrays;                ///< nVectors, nVectorsMax, sData, zVectors, zUnits, iFOD
  ColumnTable<std::int32_t> iWELL;  ///< nWells x 15
  ColumnTable<float> sWELL;         ///< nWells x 15, -32768 where nothing was stored
  ColumnTable<float> sWELL2;        ///< nWells x 14
  ColumnTable<double> dWELL;        ///< nWells x 11
  ColumnTable<std::string> zWELL;   ///< nWells x 2: name, second text
  ColumnTable<std::string> zGROUP;  ///< groups x 1
  ColumnTable<std::int32_t> iCONN;  ///< nConnections x 9, or wells x nCWMAX x 9 when nConnections is 0
  ColumnTable<float> sCONN;         ///< nConnections x 15, or wells x nCWMAX x 15

  /// The tables of wells have the same rows, and so have those of connections. None may stay when the others
  /// become those of other wells.
  void dropConnections() {
    qICON = qSCON = false;
    iCONN = {};
    sCONN = {};
  }
  void dropWells() {
    dropConnections();
    nConnections = 0;
    qIWEL = qSWEL = qXWEL = qZWEL = false;
    iWELL = {};
    sWELL = {};
    sWELL2 = {};
    dWELL = {};
    zWELL = {};
  }
  /// Values, names and wells; dates and dimensions stay.
  void dropData() {
    arrays.clear();
    nActive = 0;
    dropWells();
    qZGRP = false;
    zGROUP = {};
  }
};

}  // namespace lumbarn
