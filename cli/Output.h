#pragma once

#include <memory>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "frame/FileSink.h"
#include "frame/Transforms.h"
#include "frame/Write.h"

namespace lumbarn::cli {

/// What `--format`, `-o` and the options of their kind say.
struct OutputOptions {
  Format format = Format::Table;
  std::string file;      ///< empty: standard output
  bool unitRow = false;  ///< csv: a second header line with units; json: an object of units and rows
  bool grdecl = false;   ///< `--format grdecl`: as keywords of a data deck, where a subcommand can do that
  bool replace = false;  ///< `file` may be a simulator file or a deck
  Units units = Units::File;  ///< to which values are converted
  bool longForm = false;      ///< a row for each value
};

/// Throws Failure when a file to be written is one of `inputs`, by whatever name, or, unless `replace` is
/// given, when it is a simulator file by its content or a deck.
void checkTarget(const std::string& file, std::span<const std::string> inputs, bool replace);

/// Where a subcommand's data go: standard output, or a file that appears under its name once it is complete.
class Output {
 public:
  /// Throws Failure when the file is refused by `checkTarget`, and for options of the form that only
  /// `writeAnswer` can follow, which passes on the others; Error when it cannot be written.
  Output(const OutputOptions& options, std::ostream& standard, std::span<const std::string> inputs);

  Sink& sink() { return *sink_; }
  void write(std::string_view text);
  /// Throws Failure or Error when not everything could be written.
  void commit();

 private:
  std::unique_ptr<Sink> sink_;
  FileSink* file_ = nullptr;  // null: standard output
};

}  // namespace lumbarn::cli
