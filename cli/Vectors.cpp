#include <array>

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

void addVectors(CommandLine& line) {
  Subcommand command(line, "vectors", "List the vectors of a summary, with units and descriptions");
  VectorsOptions& options = command.performs(listVectors);
  command.path(options.path);
  command.flag("--keep-duplicates", options.keepDuplicates,
               "Show vectors whose name occurs before too, with #2 and so on behind the name");
  command.output(options.output);
  command.footer("Example:\n  lumbarn vectors --format csv RUN");
}

}  // namespace lumbarn::cli
