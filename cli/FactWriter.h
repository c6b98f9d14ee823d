#pragma once

#include "frame/Stream.h"
#include "frame/Write.h"

namespace lumbarn::cli {

/// Writes facts and files, as `facts` and `Run::files` give them, as one JSON object: numbers and lists as
/// such, a group as an object, the files as a list.
void writeFactsJson(Stream&& facts, Stream&& files, Sink& sink);

/// The same for people: groups under headings, and a table of the files, with the step files of one set in
/// one line.
void writeFactsReadable(Stream&& facts, Stream&& files, Sink& sink);

}  // namespace lumbarn::cli
