#include "Dense.h"

#include <span>

#include <fmt/format.h>

#include "../frame/NumberText.h"
#include "../frame/Write.h"
#include "RunState.h"

namespace lumbarn {

namespace {

/// Lines of a deck: a simulator ignores what is behind the 128th character.
constexpr std::size_t lineLength = 80;

void put(Sink& sink, const std::string& text) { sink.write(std::as_bytes(std::span(text))); }

template <class Number>
void writeValues(std::span<const Number> values, Sink& sink) {
  constexpr std::size_t flushedAt = std::size_t{1} << 16;
  std::string text;
  std::size_t line = 0;
  for (std::size_t i = 0; i < values.size();) {
    std::size_t end = i + 1;
    while (end < values.size() && values[end] == values[i]) ++end;
    const NumberText number(values[i]);
    const auto word =
        end - i > 1 ? fmt::format(" {}*{}", end - i, number.view()) : fmt::format(" {}", number.view());
    if (line + word.size() > lineLength) {
      text += '\n';
      line = 0;
    }
    text += word;
    line += word.size();
    i = end;
    if (text.size() < flushedAt) continue;
    put(sink, text);
    text.clear();
  }
  put(sink, text + "\n/\n");
}

}  // namespace

void writeGrdecl(const Dense& array, std::string_view name, Sink& sink) {
  if (array.components != 1)
    throwRefused({}, fmt::format("{} has {} values for each cell, a keyword of a deck has one", name,
                                 array.components));
  put(sink, fmt::format("{}\n-- {} {} {}\n", name, array.shape[2], array.shape[1], array.shape[0]));
  const auto values = [&]<class Number>(Number) {
    writeValues(
        std::span(static_cast<const Number*>(array.data.get()), static_cast<std::size_t>(array.cells())),
        sink);
  };
  if (array.type == Type::Int32) values(std::int32_t{});
  if (array.type == Type::Float32) values(float{});
  if (array.type == Type::Float64) values(double{});
}

}  // namespace lumbarn
