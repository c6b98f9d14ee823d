#pragma once

#include <string>
#include <vector>

#include "../support/Session.h"
#include "Extensions.h"

namespace lumbarn {

/// The sets of a file type that a file with this extension can refer to, the most likely first: its own set
/// if it is a step file, the set of its extension if that is of the type, otherwise those of both forms, that
/// of the file first. A deck indicates no form. Unknown takes the type from the extension. The result refers
/// to the text of `extension`.
std::vector<ExtensionSet> candidateSets(const std::string& extension, FileKind kind);

/// The files of one set in one folder, with the folder in front.
struct SetFiles {
  std::vector<std::string> steps;  ///< one file for each step, in order of step
  std::string unified;             ///< empty when there is none
};

/// Finds the files of the best set among the candidates, for the folder and the base name of `given`. Names
/// match in any letter case; files that spell the base name as `given` does take precedence over all others,
/// and of two files of one step the one in the letter case of its extension is taken. The folder is read
/// once. False, with a diagnosis, when it cannot be listed.
bool findSetFiles(const FileName& given, const std::vector<ExtensionSet>& candidates, Session& session,
                  SetFiles& files);

}  // namespace lumbarn
