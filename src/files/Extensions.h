#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace lumbarn {

/// What a file of a run is. The order is the one in which a run's files are listed.
enum class FileKind : std::uint8_t {
  Unknown,
  Deck,
  SummarySpec,     ///< the specification that goes with summary data: SMSPEC
  Summary,         ///< summary data, unified or one file per report step
  Restart,         ///< restart data, unified or one file per report step
  Rsspec,          ///< index of a restart set
  Init,            ///< static arrays
  Inspec,          ///< index of an INIT file
  EGrid,           ///< grid by coordinate lines and corner depths
  Grid,            ///< grid by corners of each cell
  Rft,             ///< well tests
  Save,            ///< state of a run for a fast restart
  StreamlineSpec,  ///< SLNSPEC
  Streamline,      ///< streamlines of one report step
  Rsm,             ///< summary as a text table
  UserRft,         ///< measured well tests, a text that a user wrote
  UserPlt,         ///< the same of measured flow along wells
};

/// The code by which hosts know the kind (`whichtype`); 0 for those that have none. An INSPEC file has the
/// code of the INIT file that it leads to.
std::int32_t whichtypeOf(FileKind kind);
/// The kind in words: "summary specification".
std::string_view nameOf(FileKind kind);
/// Whether files of the kind are texts that people write or read, not records.
bool isText(FileKind kind);

/// A file name in its parts. The extension is what stands behind the last dot of the name, so that a base
/// name may have dots, blanks and any other characters in it.
struct FileName {
  std::string folder;     ///< as it was given, with its separator; empty when there is none
  std::string base;       ///< without folder and extension
  std::string extension;  ///< without the dot; empty when there is none

  explicit FileName(std::string_view zFile);
  /// For a base name that has a dot in it.
  FileName(std::string zFolder, std::string zBase, std::string zExtension)
      : folder(std::move(zFolder)), base(std::move(zBase)), extension(std::move(zExtension)) {}
};

/// How the files of one set are named: one row for each kind, form and generation of names. All in lower
/// case.
struct ExtensionSet {
  FileKind kind;               ///< of the set's data files
  FileKind specKind;           ///< of the file that describes or indexes the set
  bool formatted;              ///< text files
  bool shortNames;             ///< the old generation, three characters
  std::string_view spec;       ///< extension of the describing file; empty when there is none
  std::string_view unified;    ///< extension of the unified file; empty when there is none
  std::string_view patternOf;  ///< the extension of which the public pattern routines know this set
  int digits;                  ///< digits of a multiple file
  /// What stands before the digits: in short names the first for steps 0 to 99, the second for 100 to 199,
  /// the third for 200 to 299; in long names one only. Names of steps from 300 on do not tell their hundreds.
  std::array<std::string_view, 3> stems;

  /// The step of a multiple file's extension, without regard to case; nothing when it is none of this set.
  std::optional<std::int32_t> stepOf(std::string_view extension) const;
  /// The extension of a step, lower case; empty when this set has no definite name for it.
  std::string extensionOf(std::int32_t step) const;
};

/// All sets, long names first.
std::span<const ExtensionSet> extensionSets();
/// The row of a set; null when there is none, as for formatted streamlines.
const ExtensionSet* findExtensionSet(FileKind kind, bool formatted, bool shortNames);

/// What an extension says.
struct ExtensionMeaning {
  FileKind kind = FileKind::Unknown;  ///< Unknown: the extension is none of a run's
  bool formatted = false;
  std::int32_t step = -1;             ///< of a multiple file; -1: not a multiple file
  const ExtensionSet* set = nullptr;  ///< the set that it belongs to or describes, if any

  bool multiple() const { return step >= 0; }
};
ExtensionMeaning meaningOf(std::string_view extension);

/// The case of names derived from one with this extension: lower when it has a lower-case letter, otherwise,
/// and so also without any extension, upper. The base name always stays as it is.
bool isUpperCase(std::string_view extension);

/// The extension for one step of a restart or save file. iKind 1 with qSave takes the file as unified. Short
/// names of a multiple set have definite digits for steps 100 to 399 only; other steps, those below 100
/// included, have a place holder, "??" with qQuestion and "##" without. From 300 on the letter is a set,
/// "[xyz]". Long names have a place holder for steps that four digits cannot hold. qOK is True always.
std::string RestartExtension(std::int32_t iStep, bool qShort, bool qUnified, bool qFormatted, bool qUpper,
                             std::int32_t iKind, bool& qOK, bool qSave, bool qQuestion);

/// The step number in the extension of a multiple file, 150 for "RUN.Y50"; -1 for any other file.
std::int32_t GetNumericPartOfFileName(std::string_view zFile);

/// Tells an extension of a multiple file: one letter with 2 or 4 digits, or "SLN" with 4, in either case.
/// Gives the count of digits and sets zLetter to what stands before them, as it stands, and nDigits to their
/// number; gives 0 and sets an empty text and -1 for any other extension.
std::int32_t checkMultipleExtension(std::string_view zExtension, std::string& zLetter, std::int32_t& nDigits);

/// The multiple-file patterns for an extension, upper case with "0" for digits, joined by ";": "S00;T00;U00"
/// for "sms". Empty for an extension that has none.
std::string GetFilePatterns(std::string_view zExtension);
/// The same as search patterns on the base name, with "?" for digits, in the case of the extension.
std::string GetFilePatternsForListBox(std::string_view zBase, std::string_view zExtension);
/// The same with "#" for digits, for a file in a chain of runs: zFile is the base name that is put in front
/// of each item, cFile has the extension, zMult takes the list. Extensions without a row of their own give
/// the list of "sms".
void GetExtensionPattern(std::string_view zFile, std::string& zMult, const FileName& cFile);

}  // namespace lumbarn
