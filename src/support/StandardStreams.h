#pragma once

namespace lumbarn {

/// Opens what the process was started without of standard input, output and error, on a device that holds
/// nothing: the next file to be opened would take its place, and messages would be written into it. Output
/// that nobody receives fails, so that the caller learns of it; messages are lost. Implemented in System.cpp.
void openStandardStreams();

}  // namespace lumbarn
