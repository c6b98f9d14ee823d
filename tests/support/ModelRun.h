#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "GridBuilder.h"
#include "RestartBuilder.h"
#include "SummaryBuilder.h"
#include "TemporaryFolder.h"
#include "WellTestBuilder.h"
#include "Writer.h"

namespace lumbarn::test {

/// A number of an array in one cell, from 0, at one step, counted from 0. The same for every writer; all
/// values have at most 8 digits, so that formatted files hold them exactly.
float modelValue(std::string_view array, std::size_t step, std::int32_t cell);

/// A vector of the summary with the name under which it is shown.
struct ModelVector {
  std::string name;
  SummaryBuilder::Vector record;
};

/// A simulation table as a deck has it.
struct ModelTable {
  std::string name;
  std::vector<std::string> columns;
  std::vector<std::vector<double>> rows;
};

/// The run that every writer writes: what a reader must find, and the files by a writer's habits.
///
/// The global grid has 3 x 2 x 4 cells, two of them inactive for most writers; a local grid of 2 x 2 x 1
/// cells replaces the four at the corner. Two wells; report steps ten days apart, each of two ministeps.
class Model {
 public:
  static constexpr std::array<std::int32_t, 3> size{3, 2, 4};
  static constexpr std::int32_t cells = 24;
  static constexpr std::int32_t localCells = 4;
  static constexpr const char* localGrid = "LGR1";

  explicit Model(const Writer& writer) : writer_(&writer) {}

  // Time
  std::chrono::sys_seconds start() const;
  std::int32_t firstStep() const;                  ///< the report step at which the run starts
  std::vector<std::int32_t> restartSteps() const;  ///< numbers of the report steps in the restart
  double daysAt(std::int32_t step) const;
  std::chrono::sys_seconds dateAt(double days) const;
  static std::array<std::int32_t, 3> dayMonthYear(std::chrono::sys_seconds moment);

  // Cells: numbers from 0 in natural order.
  std::vector<std::int32_t> activeCells() const;  ///< that arrays of INIT and restart have values for
  std::int32_t activeInGrid() const;              ///< that the grid file counts
  std::int32_t cellOffset(bool local) const { return local ? 50 : 0; }  ///< added to cells for values

  // Values
  std::vector<ModelVector> vectors() const;
  std::vector<std::vector<float>> summaryRows() const;  ///< complete rows
  std::vector<std::vector<float>> earlierRows() const;  ///< rows of the run it restarted from
  std::vector<std::string> restartArrays() const;
  std::vector<float> values(std::string_view array, std::size_t step, bool local) const;
  std::vector<std::array<std::int32_t, 3>> connections(std::size_t well) const;
  std::vector<ModelTable> tables() const;

  // Files
  SummaryBuilder summary() const;
  SummaryBuilder earlierSummary() const;
  RestartBuilder restart() const;
  std::vector<std::byte> init(const Form& form) const;
  GridBuilder grid() const;
  WellTestBuilder wellTests() const;

  const Writer& writer() const { return *writer_; }

 private:
  std::string unit(std::string_view text) const;
  std::vector<float> times() const;
  RestartBuilder::Grid restartGrid(std::size_t step, bool local) const;
  std::pair<std::vector<std::int32_t>, std::vector<double>> storedTables() const;  ///< TABDIMS and TAB

  const Writer* writer_;
};

/// The files of the model on disk, as one writer leaves them in one form.
class ModelRun {
 public:
  ModelRun(const Writer& writer, const Form& form);

  const Writer& writer() const { return model.writer(); }
  std::string root() const { return folder.file("RUN"); }

  Model model;
  Form form;
  TemporaryFolder folder;
  std::string specificationPath, initPath, gridPath, testsPath;
  std::string dataPath, restartPath;     ///< the unified file, or the file of the first step
  std::string indexPath, initIndexPath;  ///< RSSPEC, INSPEC; empty without one

 private:
  std::string named(const std::string& extension) const;
  std::vector<std::byte> indexOf(const std::string& path) const;
};

/// Bytes as the writer's formatted files have them: line ends and the column of headers.
std::vector<std::byte> withLinesOf(const Writer& writer, const Form& form, std::vector<std::byte> bytes);

}  // namespace lumbarn::test
