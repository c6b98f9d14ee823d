#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Extensions.h"

namespace lumbarn {

/// One file of a run.
struct RunMember {
  std::string path;  ///< the run's folder and the name
  FileKind kind = FileKind::Unknown;
  bool formatted = false;
  std::int32_t step = -1;             ///< of a multiple file; -1: not a multiple file
  const ExtensionSet* set = nullptr;  ///< the set that the file belongs to or describes, if any

  bool multiple() const { return step >= 0; }
};

/// The files that one run left in one folder under one base name, as told by their names.
struct RunFamily {
  std::string folder;                ///< in front of every member's path, with its separator; may be empty
  std::string base;                  ///< as the files spell it
  std::vector<RunMember> members;    ///< by kind, unformatted first, step files in order of step
  std::optional<std::size_t> given;  ///< the member that the family was found by, when it was a file

  const RunMember* givenMember() const { return given ? &members[*given] : nullptr; }

  /// The one file to take for a kind; null when there is none. The given file when it is of that kind;
  /// otherwise one in the form of the given file, an unformatted one rather than a formatted one, a unified
  /// one rather than one of a step, one in the case of the given file, the lowest step, in this order of
  /// weight. A deck says nothing about form. A specification whose summary is there precedes one without.
  const RunMember* find(FileKind kind) const;
  /// The step files of a kind in order of step, all of one set, chosen by the same preferences, each step
  /// once; empty when there are none.
  std::vector<const RunMember*> steps(FileKind kind) const;
};

/// The runs that a path can mean, in order of base name; none with `why` set.
///
/// - A file: the run that it is a member of, with that file as `given`. A file whose name tells no kind is a
///   member all the same, its kind being told by its records.
/// - A name that is no file: the runs that have it as base name, a dot at its end left aside. If there is
/// none
///   that spells it so, those that differ only in case, then a run whose file differs from it only in case.
/// - A folder: the runs in it, which are those that left more than decks, text tables and save files. A path
///   without a separator at its end that is a folder and a base name as well means both.
///
/// The folder is read once; symbolic links count as files.
std::vector<RunFamily> findRuns(const std::string& path, std::string& why);

}  // namespace lumbarn
