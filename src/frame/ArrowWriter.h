#pragma once

#include "Write.h"

namespace lumbarn {

/// Writes a stream in Arrow's IPC format, as a file or as a stream of messages. `write` calls it.
void writeArrow(Stream&& stream, Sink& sink, bool file);

}  // namespace lumbarn
