#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "../support/Export.h"
#include "../vocabulary/UnitChange.h"
#include "Stream.h"

namespace lumbarn {

// Functions of streams. Each takes a stream and gives another in its place, with the same context: what is
// reported while the first is read is reported by the second. They go batch by batch, so their memory is
// bounded as that of the stream.

/// The last rows of each period; ReportStep: of each number in the column "step".
enum class Every : std::uint8_t { Row, ReportStep, Day, Month, Quarter, Year };

/// The rows for which `keep` is true.
LUMBARN_API Stream where(Stream stream, std::function<bool(const Batch& batch, std::size_t row)> keep);
/// The rows with one of these texts in a column of texts. Throws Error NotFound without that column, and
/// BadRequest for one of another type.
LUMBARN_API Stream where(Stream stream, const std::string& column, std::vector<std::string> texts);

/// The rows of the last moment of each period, by the first column of moments and, where there is a column
/// "run", for each run on its own. Rows are in the order of their moments; those without one are left out.
/// Throws Error BadRequest where no column has what the periods are counted by.
LUMBARN_API Stream resample(Stream stream, Every every);

/// Converts the values of columns that have a unit, in double precision and rounded once to the column's
/// type. A column "days" remains what its name says, and whole numbers remain as they are. Columns whose unit
/// is not known keep values and text, and one remark names the units. In a table with the unit of each row in
/// a column "unit", the columns "value", "min", "max", "mean", "weighted_mean" and "sum", and those with the
/// metadata "statistic": "percentile", are converted row by row.
LUMBARN_API Stream convertUnits(Stream stream, Units units);

/// Whether each column has values; the others tell what a row is about, and the long form repeats them. A
/// question says so by the metadata "role", "key" or "value". Otherwise, where columns have "mnemonic" or
/// "array" as metadata, these are the values; in other tables all numbers but those that have the name of a
/// place or time, such as "step", "days" or "i".
LUMBARN_API std::vector<bool> valueColumns(const Schema& schema);

/// A row for each value: the keys, then "vector", "mnemonic" and "member" where columns have mnemonics and
/// their place in their names, otherwise, as in tables with a column "grid", "array"; then "value" and
/// "unit". The value has the type of all columns of values, or is a text where these differ, with each number
/// in the shortest form of its own type. What has no value has no row. A table that has columns "value" and
/// "unit" is long already and remains as it is. Throws Error BadRequest for a table without values, and for
/// one with lists.
LUMBARN_API Stream toLong(Stream stream);

}  // namespace lumbarn
