#pragma once

#include <string>
#include <string_view>

namespace lumbarn {

/// A mnemonic has an optional "L" for a vector of a local grid, a letter for its class, and the variable; the
/// text behind an underscore is the number of a tracer or of another group of vectors. All names may be blank
/// padded.

/// Class word of a mnemonic by its letters: "WELLS", "FIELD", ... "MISCELLANEOUS"; "IRF" for a flow between
/// regions. Keys that `isMiscellaneousKey` knows are "MISCELLANEOUS".
std::string_view classOfKey(std::string_view zKey);
/// True for the solver and step statistics whose first letter is that of another class.
bool isMiscellaneousKey(std::string_view zKey);

/// A mnemonic taken apart; both are views into it.
struct VectorParts {
  std::string_view variable;
  std::string_view number;  ///< behind an underscore; empty when there is none
};
/// Takes a mnemonic apart. Kinds are "SUMMARY" ("LWTPR_3" gives "TPR" and "3") and "SEGBRAN" ("SEGPRES" gives
/// "PRES"); a vector of any other kind is a variable as it stands.
VectorParts splitVector(std::string_view zKind, std::string_view zVector);
/// Calling form of the same. Any text has an answer: qOK is True.
void getEclipseVectorInfo(std::string_view zKind, std::string_view zVector, std::string& zVariable,
                          std::string& zNumber, bool& qOK);
/// Description text for the kinds "SUMMARY", "SEGBRAN" and "Table"; the vector itself for others. zNumberOut
/// is the number behind an underscore.
std::string getEclipseLongDescription(std::string_view zKind, std::string_view zVector,
                                      std::string& zNumberOut);

}  // namespace lumbarn
