#pragma once

#include <string>
#include <string_view>

namespace lumbarn {

/// Class word of a mnemonic by its letters: "WELLS", "FIELD", ... "MISCELLANEOUS"; "IRF" for a flow between
/// regions.
std::string_view classOfKey(std::string_view zKey);
/// True for the solver and step statistics whose first letter is that of another class. Decides before
/// `classOfKey`.
bool isMiscellaneousKey(std::string_view zKey);

/// Splits a mnemonic into its variable and the number behind an underscore.
void getEclipseVectorInfo(std::string_view zKind, std::string_view zVector, std::string& zVariable,
                          std::string& zNumber, bool& qOK);
/// Description text for the kinds "SUMMARY", "SEGBRAN" and "Table"; the vector itself for others. zNumberOut
/// is the number behind an underscore.
std::string getEclipseLongDescription(std::string_view zKind, std::string_view zVector,
                                      std::string& zNumberOut);

}  // namespace lumbarn
