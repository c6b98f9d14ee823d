#include "run/Convert.h"

#include "Answer.h"
#include "Commands.h"
#include "run/Records.h"

namespace lumbarn::cli {
namespace {

struct ConvertOptions {
  std::string file;
  std::string target;
  Conversion conversion;
  TimeOptions time;
  bool replace = false;
};

ExitStatus convertFile(const ConvertOptions& options, Console& console) {
  const std::string file = recordFile(options.file);
  Conversion conversion = options.conversion;
  if (options.time.given()) conversion.time = options.time.selection();
  checkTarget(options.target, std::span(&file, 1), options.replace);
  convert(file, options.target, conversion, asking(console));
  console.progress().hide();
  return console.doneStatus();
}

}  // namespace

void addConvert(CommandLine& line) {
  Subcommand command(line, "convert", "Write the records of a file in another form, or some of them");
  ConvertOptions& options = command.performs(convertFile);
  command.path(options.file, "A record file", "FILE");
  command.requiredValue("-o,--output", options.target, "FILE", "The file to write");
  command.flag("--formatted", options.conversion.formatted,
               "Write text lines, as is done where the name of the target says so");
  command.flag("--little-endian", options.conversion.littleEndian,
               "Write numbers with the lowest byte first; otherwise the highest");
  command.list("--array", options.conversion.arrays, "NAMES",
               "Of arrays of cells only these; * and ? stand for others");
  command.time(options.time);
  command.flag("--replace", options.replace, "Let the target replace a simulator file or a deck");
  command.footer(
      "What was written is read back before it gets its name. Example:\n"
      "  lumbarn convert RUN.UNRST -o RUN.FUNRST\n"
      "  lumbarn convert RUN.UNRST --steps last --array PRESSURE,SWAT -o LAST.UNRST");
}

}  // namespace lumbarn::cli
