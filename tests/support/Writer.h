#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ostream>

namespace lumbarn::test {

/// Habits of one writer of simulator files: everything that differs between writers although the run is the
/// same. The defaults are what most of them do. Texts are raw bytes, as they are stored in the files.
struct Writer {
  enum class SpecHead { InteheadRestart, InteheadDimens, Restart };  ///< first records of SMSPEC
  enum class Padding { Left, Centered, Right };  ///< of unit strings in their eight characters
  enum class Activity { Ones, Absent, Bits };    ///< ACTNUM: 0 and 1, not written, matrix + 2 * fracture
  enum class ItimeWords { TimeStep, Marker };    ///< what follows the date in ITIME
  enum class Measured { OneTest, TwoTests };     ///< RFT and PLT arrays of the same well and date
  enum class Earlier { None, Name, MovedPath };  ///< RESTART: no earlier run, its name, a path that moved

  /// SEQHDR: a time stamp, 0, or the number of the report step.
  enum class Sequence { Stamp, Zero, Counting };
  enum class GridEnd { Message, NoInteger, OneInteger };  ///< ENDLGR

  const char* name = "";

  // Run
  std::int32_t program = 100;                       ///< simulator code, word 95 of INTEHEAD
  std::int32_t units = 1;                           ///< unit system: 1 metric, 2 field, 3 laboratory
  bool gas = false;                                 ///< three phases, not oil and water alone
  std::array<const char*, 2> wells = {"P1", "I1"};  ///< names may contain ":", "*", Latin-1 bytes, blanks
  const char* node = "NODE1";                       ///< node names are free text
  bool localGrid = false;                           ///< a local grid replaces four cells
  bool unified = true;                              ///< one file for all steps, not one for each
  std::int32_t steps = 3;                           ///< report steps
  double firstDay = 0;         ///< days before the first row; 500 years in long forecasts
  std::int32_t startHour = 0;  ///< hour of the day at which the run starts
  bool initialStep = false;    ///< the restart begins with step 0, the initial state
  bool leftovers = false;      ///< step files of an earlier, longer run beside the unified files
  bool running = false;        ///< the last ministep is truncated: the simulator is still at work

  // Record files
  bool headersInFirstColumn = false;  ///< formatted headers without a blank before the quote
  bool carriageReturns = false;       ///< formatted lines end with CR LF
  bool bothForms = false;             ///< SMSPEC and FSMSPEC side by side
  bool tinyNumbers = false;           ///< doubles whose exponent has three digits and no letter
  const char* ownRecord = nullptr;    ///< keyword of a record of its own at the start of UNSMRY and UNRST

  // Summary
  SpecHead specHead = SpecHead::InteheadRestart;
  Earlier earlier = Earlier::None;
  std::size_t startWords = 6;              ///< STARTDAT: 3, or 6 with the time of day
  bool namesRecord = false;                ///< NAMES (C008, C032) instead of WGNAMES
  int nameWidth = 8;                       ///< bytes of a name of a well, in NAMES and ZWEL
  Sequence sequence = Sequence::Counting;  ///< SEQHDR
  Padding padding = Padding::Left;         ///< of unit strings
  bool skippedMinistep = false;            ///< MINISTEP skips a number and repeats the next
  bool moreSpecRecords = false;            ///< MEASRMNT, LENGTHS, LENUNITS, RUNTIMEI, RUNTIMED
  bool localGridTimes = false;             ///< LGRVEC and LGRTIMES
  bool repeatedVector = false;             ///< a vector is stored twice
  bool inventedVectors = false;            ///< #WSTATH1 and the like, one for each well
  bool totals = true;                      ///< FOPT, in which a rate applies to the interval before its row

  // Restart
  bool seqnum = true;                             ///< SEQNUM in front of the steps of a unified file
  bool seqnumInStepFiles = false;                 ///< and in front of each step file
  bool initialStepIsOneInHeader = false;          ///< word 69 of step 0 is 1
  std::size_t headerWords = 411;                  ///< INTEHEAD
  std::size_t logicalWords = 80;                  ///< LOGIHEAD; 0: not written
  std::size_t doubleWords = 2;                    ///< DOUBHEAD; 0: not written
  bool solutionMarks = true;                      ///< STARTSOL and ENDSOL
  bool wellsOnlyStep = false;                     ///< the second step has wells and no solution
  bool icon = true;                               ///< connections are written
  std::int32_t connectionSlots = 3;               ///< NCWMAX
  std::array<std::int32_t, 2> controls = {1, 7};  ///< word 9 of IWEL: 1 to 5 rates, 6 THP, 7 BHP, -1 group
  bool doubleGroups = false;                      ///< SGRP is DOUB
  GridEnd gridEnd = GridEnd::Message;             ///< ENDLGR
  bool index = false;                             ///< an RSSPEC beside the unified file
  bool initIndex = false;                         ///< an INSPEC beside the INIT file
  bool indexUnits = false;                        ///< MEASRMNT and UNITS in both
  ItimeWords itime = ItimeWords::TimeStep;

  // INIT
  bool passes = true;                    ///< local grids come again for each group of arrays; else once
  bool lgrsGone = true;                  ///< LGRSGONE ends a pass
  bool integerLgrsGone = false;          ///< as an INTE record without elements
  bool junkRows = false;                 ///< unused rows of saturation tables repeat the last values
  std::int32_t tableFill = 0;            ///< words of TABDIMS for tables that are not in use
  bool sizedUnusedTable = false;         ///< a table that is not in use keeps its size and starts at word 1
  bool constantCompressibility = false;  ///< oil has one row of PREF, BO, CO, MUO, CVO
  bool metricTables = false;             ///< pressures of TAB are metric in every unit system

  // Grid
  bool gridFile = false;       ///< GRID instead of EGRID
  bool omitsInactive = false;  ///< inactive cells have no COORDS there
  Activity activity = Activity::Ones;
  bool dualPorosity = false;       ///< EGRID has half the layers of the other files
  bool poreVolumesDecide = false;  ///< EGRID counts cells as active that have no pore volume
  bool activeInWord4 = false;      ///< active cells are counted in word 4 of INTEHEAD, not in word 12
  bool mapRecords = false;         ///< MAPUNITS, MAPAXES, GDORIENT; GRIDUNIT "METRES", "MAP"

  // Well tests
  Measured measured = Measured::OneTest;
  const char* testTimeUnit = "  DAYS";  ///< word 1 of WELLETC

  friend void PrintTo(const Writer& writer, std::ostream* out) { *out << writer.name; }
};

/// The writers that runs come from, by type. Together the rows set every field.
inline const std::array<Writer, 8> everyWriter{{
    {.name = "ClassicBlackOil",
     .units = 2,
     .gas = true,
     .localGrid = true,
     .leftovers = true,
     .sequence = Writer::Sequence::Stamp,
     .moreSpecRecords = true,
     .localGridTimes = true,
     .index = true,
     .initIndex = true,
     .indexUnits = true,
     .junkRows = true,
     .tableFill = 1,
     .mapRecords = true},
    {.name = "Compositional",
     .program = 300,
     .wells = {"PLATFORM NORTH: PRODUCER 1/A", "PLATFORM NORTH: INJECTOR*2"},
     .unified = false,
     .startHour = 6,
     .namesRecord = true,
     .nameWidth = 32,
     .sequence = Writer::Sequence::Zero,
     .wellsOnlyStep = true,
     .controls = {5, -1},
     .doubleGroups = true,
     .activity = Writer::Activity::Absent,
     .activeInWord4 = true,
     .measured = Writer::Measured::TwoTests},
    {.name = "DualPorosity",
     .initialStep = true,
     .sequence = Writer::Sequence::Stamp,
     .initialStepIsOneInHeader = true,
     .index = true,
     .initIndex = true,
     .itime = Writer::ItimeWords::Marker,
     .constantCompressibility = true,
     .activity = Writer::Activity::Bits,
     .dualPorosity = true},
    {.name = "Ix",
     .program = 700,
     .wells = {"NORTH FLANK PRODUCER 1", "NORTH FLANK INJECTOR 2"},
     .unified = false,
     .namesRecord = true,
     .nameWidth = 32,
     .padding = Writer::Padding::Right,
     .skippedMinistep = true,
     .seqnumInStepFiles = true,
     .controls = {7, 5},
     .poreVolumesDecide = true},
    {.name = "OpenSimulator",
     .program = -1,
     .units = 2,
     .gas = true,
     .localGrid = true,
     .tinyNumbers = true,
     .gridEnd = Writer::GridEnd::NoInteger,
     .passes = false,
     .lgrsGone = false,
     .metricTables = true},
    {.name = "Reexporter",
     .wells = {"\xD8-1", "B:2*"},
     .node = "NODE 1/A",
     .steps = 1,
     .bothForms = true,
     .ownRecord = "EXPORTER",
     .repeatedVector = true,
     .inventedVectors = true,
     .totals = false,
     .seqnum = false,
     .logicalWords = 0,
     .doubleWords = 0,
     .icon = false,
     .controls = {6, 6}},
    {.name = "Nineties",
     .localGrid = true,
     .firstDay = 182500,
     .headersInFirstColumn = true,
     .carriageReturns = true,
     .specHead = Writer::SpecHead::InteheadDimens,
     .startWords = 3,
     .headerWords = 95,
     .logicalWords = 60,
     .doubleWords = 1,
     .solutionMarks = false,
     .controls = {2, 3},
     .gridEnd = Writer::GridEnd::OneInteger,
     .integerLgrsGone = true,
     .sizedUnusedTable = true,
     .gridFile = true,
     .omitsInactive = true},
    {.name = "Laboratory",
     .units = 3,
     .running = true,
     .specHead = Writer::SpecHead::Restart,
     .earlier = Writer::Earlier::MovedPath,
     .namesRecord = true,
     .padding = Writer::Padding::Centered,
     .connectionSlots = 1,
     .controls = {4, 7},
     .testTimeUnit = " HOURS"},
}};

}  // namespace lumbarn::test
