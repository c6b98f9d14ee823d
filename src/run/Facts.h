#pragma once

#include <optional>
#include <string>

#include "../frame/Stream.h"

namespace lumbarn {

/// Facts as returned by `Run::facts`: for a file its type, form, layout, size and what its headers state; for
/// a root name or a folder those of all files of the run. The file need not belong to a run. Throws as
/// Run::open.
Stream facts(const std::string& path, const ReadOptions& options = {});

/// The type of a file that nobody wants to lose by mistake: one of a simulator by its content, or a deck.
/// Nothing for others.
std::optional<std::string> typeOfInput(const std::string& path);

}  // namespace lumbarn
