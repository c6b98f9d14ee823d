#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Session.h"

namespace lumbarn {

/// Whether the loader of hosts takes a keyword to a parser. Deliberate: some of these have none, see
/// `parserOfKeyword`, and BICS, DREFS, PARACHORS, PINCREG, SORWMIS, TPAMEPS and TPAMEPSS are in no row of the
/// dictionary, so that no deck gets them here.
bool processEclipseKeyword(std::string_view zKey);

/// The name of the routine that parses a keyword; empty where nothing does. Deliberate: AQUDIMS, ENDSCALE,
/// SATOPTS, GREF, SSHIFTS, WELTARG and WLISTNAM are accepted and then ignored, while ASPWETF and SCDPTAB have
/// parsers and are not accepted.
std::string_view parserOfKeyword(std::string_view zKey);

/// What the arguments of a keyword are when they are defaulted; none for a keyword without such a list.
const std::vector<std::string>& defaultArguments(std::string_view key);
/// Densities of oil, water and gas by unit system; those of any other number are those of FIELD.
const std::vector<std::string>& defaultDensities(std::int32_t unitSystem);

void getDefaultArguments(std::string_view zKey, std::vector<std::string>& vArgs, std::int32_t& nArgs,
                         bool& qOK, Session& session = Session::process());
void getDefaultUnitArguments(std::int32_t iUnits, std::vector<std::string>& vArgs, std::int32_t& nArgs,
                             bool& qOK, Session& session = Session::process());

}  // namespace lumbarn
