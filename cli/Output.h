#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <span>
#include <streambuf>
#include <string>
#include <string_view>

#include "frame/Transforms.h"
#include "frame/Write.h"
#include "support/PendingFile.h"

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

/// Writes to a file and keeps the reason of the first failure.
class FileBuffer final : public std::streambuf {
 public:
  bool open(const std::string& path);
  /// Writes to a file that is open.
  void attach(OutputFile& file) { file_ = &file; }
  bool close();
  const std::string& error() const { return error_; }

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;
  int sync() override;

 private:
  bool put(std::string_view bytes);

  OutputFile own_;
  OutputFile* file_ = nullptr;
  std::string pending_;
  std::string error_;
};

/// Where a subcommand's data go: standard output, or a file that appears under its name once it is complete.
class Output {
 public:
  /// Throws Failure when the file cannot be written, or is refused by `checkTarget`, and for options of the
  /// form that only `writeAnswer` can follow, which passes on the others.
  Output(const OutputOptions& options, std::ostream& standard, std::span<const std::string> inputs);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  std::ostream& stream() { return target_.empty() ? standard_ : file_; }
  /// Throws Failure when not everything could be written.
  void commit();

 private:
  std::ostream& standard_;
  std::filesystem::path target_;        // empty: standard output
  std::optional<PendingFile> pending_;  // empty: written in place
  FileBuffer buffer_;
  std::ostream file_{&buffer_};
};

}  // namespace lumbarn::cli
