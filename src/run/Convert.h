#pragma once

#include <string>

#include "../frame/Stream.h"
#include "Selections.h"

namespace lumbarn {

/// Writes the records of a file to another one, in the form that is asked for. The target appears when it is
/// complete and was read back: numbers and texts are the same, in a formatted file singles and doubles to
/// half a unit of the 8th and 14th digit; logicals are the words of the file. A file that exists is replaced,
/// other than the source itself, which throws Error BadRequest, as does a byte order for a formatted file.
///
/// Throws Error, with nothing written: NotFound when no step or array is selected, Damaged for a file that
/// cannot be read to its end. With `keepPartial` the records before the damage are written.
void convert(const std::string& file, const std::string& target, const Conversion& conversion = {},
             const ReadOptions& options = {});

}  // namespace lumbarn
