#pragma once

#include <string_view>

#include "../support/Session.h"
#include "SummarySpec.h"

namespace lumbarn {

/// Whether the file is a summary specification: its first record is RESTART, or INTEHEAD and its second
/// RESTART or DIMENS (newer writers put INTEHEAD in front; restart and INIT files begin with it too). Sets
/// the form and remembers the name; on false `spec` is as it was.
bool checkSpec(SummarySpec& spec, std::string_view zFile, Session& session);

/// Reads the file that `spec` names. False, with the reason reported, when it is not there, damaged, or the
/// load was cancelled. When the damage lies behind a whole KEYWORDS record, qDamaged is set and what was read
/// before it can be used; otherwise nothing is held. With qScanOnly only the record list is filled.
///
/// Nothing in the file is trusted but KEYWORDS: it says how many vectors there are. Arrays beside it that are
/// shorter or longer are used as far as they go (what is missing reads as an empty text or 0), and each
/// irregularity is told as a Diagnosis.
bool readSpec(SummarySpec& spec, Session& session);

}  // namespace lumbarn
