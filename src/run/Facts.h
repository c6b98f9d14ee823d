#pragma once

#include <optional>
#include <string>

#include "../frame/Stream.h"

namespace lumbarn {

/// What is known without reading the data, as `Run::facts` tells it: of a file its kind, form, layout and
/// size, and what its headers tell; of a root name or a folder the same of all files of the run. A file need
/// not belong to a run. Throws as Run::open.
Stream facts(const std::string& path, const ReadOptions& options = {});

/// The type of a file that nobody wants to lose by mistake: one of a simulator by its content, or a deck.
/// Nothing for others.
std::optional<std::string> typeOfInput(const std::string& path);

}  // namespace lumbarn
