#pragma once

#include <string>
#include <vector>

#include "Stream.h"

namespace lumbarn {

/// The answer of one run.
struct NamedStream {
  std::string run;  ///< unlike those of the others
  Stream stream;
};

/// The answers of several runs to one question, one after another, behind a column "run". The columns are
/// those of all, by name: in the order of the first run, then the others. Cells are null where a run does not
/// have the column, which one remark tells. A column has the type that holds the values of all and the unit
/// of the first run that has it: others are converted, or left out and reported where that cannot be.
///
/// The answers must have been asked with the same options. Where one ends in an Error, so does the whole;
/// with `keepPartial` the next run follows.
Stream joinRuns(std::vector<NamedStream> runs);

}  // namespace lumbarn
