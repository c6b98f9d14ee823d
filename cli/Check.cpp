#include "run/Check.h"

#include <fmt/format.h>

#include "Answer.h"
#include "Commands.h"
#include "support/Text.h"

namespace lumbarn::cli {
namespace {

struct CheckArguments {
  std::string path;
  CheckOptions check;
  OutputOptions output;
};

/// A line for each finding, and one for each file.
void writeLines(RunCheck& check, Output& out, Console& console) {
  const auto line = [&](const Diagnosis& finding) { out.write(printable(toUtf8(finding.text())) + "\n"); };
  while (const auto file = check.next(line)) {
    console.progress().hide();
    out.write(fmt::format("{}: {} {}{}, {}\n", printable(file->path), file->records, file->unit,
                          file->records == 1 ? "" : "s",
                          file->findings == 0   ? "clean"
                          : file->findings == 1 ? "1 finding"
                                                : fmt::format("{} findings", file->findings)));
    out.sink().flush();
  }
}

ExitStatus checkRun(const CheckArguments& options, Console& console) {
  const auto check = std::make_shared<RunCheck>(options.path, options.check, asking(console));
  const auto files = check->files();
  if (options.output.format == Format::Table) {
    Output output(options.output, console.out(), files);
    writeLines(*check, output, console);
    output.commit();
  } else {
    writeAnswer(RunCheck::findings(check), options.output, files, console);
  }
  if (!check->anyRecord()) return Unreadable;
  return check->incomplete() ? Partial : Done;
}

}  // namespace

void addCheck(CommandLine& line) {
  Subcommand command(line, "check", "Look at every record of a run's files and report all that is wrong");
  CheckArguments& options = command.performs(checkRun);
  command.path(options.path);
  command.flag("--values", options.check.values, "Read the data of all records too");
  command.output(options.output);
  command.footer(
      "Without --values headers are read, and the first and last mark of the data of each record.\n"
      "Exit status: 0 clean or remarks only, 3 incomplete or damaged, 1 no record could be read.\nExample:\n"
      "  lumbarn check --values RUN");
}

}  // namespace lumbarn::cli
