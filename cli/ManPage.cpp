#include "ManPage.h"

#include <string>
#include <string_view>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace lumbarn::cli {
namespace {

constexpr std::string_view heading = R"(.TH LUMBARN 1 "" "lumbarn" "User Commands"
.SH NAME
lumbarn \- read the result files of reservoir simulators
.SH SYNOPSIS
.B lumbarn
.I SUBCOMMAND
[\fIOPTIONS\fR] \fIPATH\fR
.SH DESCRIPTION
.B lumbarn
answers questions about the files that a run of a reservoir simulator leaves: what they are, whether they are complete,
and what is in them. It never writes next to the data unless a file there is named as the output.
.PP
.I PATH
is any file of the run, its root name without extension, or a folder that contains one run. The other files are found
from it. When several runs match, they are listed, and the exit status is 2. When a run has a unified file and step
files, a file that is named decides which are read; otherwise the unified file is read, unless every step file is at
least a minute newer, and a message states which.
.PP
CSV output follows RFC 4180, with one header line. Numbers are in the shortest form that reads back to the same value;
no value is an empty field, in JSON null. A file given by
.B \-o
appears when it is complete; until then it has a temporary name in the same folder.
.SH SUBCOMMANDS
)";

constexpr std::string_view ending = R"(.SH MESSAGES
Messages go to standard error. A bad file gives one line:
.PP
.nf
lumbarn: PATH: what is wrong (KEYWORD, occurrence N, byte B: expected X, found Y); what was done
.fi
.PP
When standard error is a terminal and the work takes over a second, a progress bar is shown. Ctrl\-C ends the command
and leaves no partially written file; pressed twice it ends it at once. A hangup or a request to terminate does the same.
.SH EXIT STATUS
.TP
.B 0
Success. Remarks, and patterns without a match next to others that match, do not change it.
.TP
.B 1
The data could not be read, or the output could not be written. For
.BR check :
no record could be read.
.TP
.B 2
Wrong usage, no such file, or nothing selected.
.TP
.B 3
Done in part: what could be read was written, and the rest is reported on standard error. For
.BR check :
a file is incomplete or damaged; remarks alone give 0.
.TP
.B 4
Compared, and there are differences.
.TP
.B 130
Ended by Ctrl\-C.
)";

/// A text for the formatter: its own marks escaped.
std::string escaped(std::string_view text) {
  std::string safe;
  bool lineStart = true;
  for (const char c : text) {
    if (lineStart && (c == '.' || c == '\'')) safe += "\\&";
    if (c == '-') safe += '\\';
    safe += c == '\\' ? "\\e" : std::string(1, c);
    lineStart = c == '\n';
  }
  return safe;
}

void writeOption(const CLI::Option& option, std::ostream& out) {
  std::string names;
  for (const auto& name : option.get_snames()) names += "\\-" + name + ", ";
  for (const auto& name : option.get_lnames()) names += "\\-\\-" + escaped(name) + ", ";
  if (names.empty()) return;  // the path
  names.resize(names.size() - 2);
  const std::string& word = option.get_option_text();
  out << ".TP\n\\fB" << names << "\\fR" << (word.empty() ? "" : " \\fI" + escaped(word) + "\\fR") << "\n"
      << escaped(option.get_description()) << ".\n";
}

void writeSubcommand(const CLI::App& command, std::ostream& out) {
  out << ".SS lumbarn " << command.get_name() << "\n" << escaped(command.get_description()) << ".\n";
  for (const CLI::Option* option : command.get_options()) {
    if (!option->check_lname("help")) writeOption(*option, out);
  }
  const std::string footer = command.get_footer();
  if (!footer.empty()) out << ".PP\n.nf\n" << escaped(footer) << "\n.fi\n";
}

}  // namespace

void writeManPage(const CLI::App& app, std::ostream& out) {
  out << heading;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
    writeSubcommand(*command, out);
  out << ending;
}

}  // namespace lumbarn::cli
