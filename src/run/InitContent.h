#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "../frame/Stream.h"
#include "../init/InitFile.h"
#include "RunState.h"

namespace lumbarn {

/// The INIT file of a run, walked: its arrays are not read. Throws Error NotFound without one, Damaged when
/// nothing of it can be read. Refers to the session of the context.
std::unique_ptr<InitFile> openInit(const RunState& run, StreamContext& context, bool tables = false);

/// The number of a grid by its name; empty means the global one. Throws Error NotFound.
std::int32_t gridNumber(const InitFile& init, const std::string& name);

}  // namespace lumbarn
