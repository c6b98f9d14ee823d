#include <array>
#include <memory>

#include <CLI/CLI.hpp>

#include "Commands.h"
#include "Output.h"
#include "PathArgument.h"
#include "VectorNames.h"
#include "reader/qvEclipseReader.h"

namespace lumbarn::cli {
namespace {

struct VectorsOptions {
  std::string path;
  bool keepDuplicates = false;
  OutputOptions output;
};

std::array<std::string_view, 8> cells(const NamedVector& named) {
  const SummaryVector& vector = *named.vector;
  return {named.name,   vector.mnemonic, vector.classWord, vector.member,
          vector.index, vector.lgr,      vector.units,     vector.description};
}

ExitStatus listVectors(const VectorsOptions& options, Console& console) {
  qvEclipseReader reader(console.session());
  const RunFamily run = findRun(options.path);
  reader.FileName = summarySpecification(run).path;
  reader.AcceptDamaged = true;
  bool qOK = false;
  const auto vectors = reader.ListSummaryVectors(qOK);
  console.checkCancelled();
  if (!qOK) console.giveUp(reader.FileName, "no vectors can be read from it");

  const auto named = nameVectors(vectors, options.keepDuplicates, console);
  std::vector<Column> columns{{"name"},  {"mnemonic"}, {"class"}, {"member"},
                              {"index"}, {"lgr"},      {"units"}, {"description"}};
  for (const NamedVector& vector : named) {
    const auto row = cells(vector);
    for (std::size_t i = 0; i < row.size(); ++i)
      columns[i].width = std::max(columns[i].width, displayWidth(row[i]));
  }
  Output output(options.output, console.out(), pathsOf(run));
  const auto table = TableWriter::make(options.output.format, columns, output.stream());
  for (const NamedVector& vector : named) {
    for (const std::string_view cell : cells(vector)) table->text(cell);
  }
  table->finish();
  output.commit();
  return console.doneStatus();
}

}  // namespace

void addVectors(CLI::App& app, Action& chosen) {
  auto options = std::make_shared<VectorsOptions>();
  CLI::App* command =
      app.add_subcommand("vectors", "List the vectors of a summary, with units and descriptions");
  command->add_option("PATH", options->path, "A file of the run, its root name or its folder")
      ->required()
      ->option_text(" ");
  command->add_flag("--keep-duplicates", options->keepDuplicates,
                    "Show vectors whose name occurs before too, with #2 and so on behind the name");
  addOutputOptions(*command, options->output);
  command->footer("Example:\n  lumbarn vectors --format csv RUN");
  command->callback([options, &chosen] {
    chosen = [options](Console& console) { return listVectors(*options, console); };
  });
}

}  // namespace lumbarn::cli
