#include "Decks.h"

#include <cmath>
#include <functional>
#include <vector>

#include "../deck/CellArrays.h"
#include "../deck/DeckGeometry.h"
#include "../files/Folder.h"
#include "../files/Recogniser.h"
#include "RunState.h"

namespace lumbarn {

namespace {

constexpr std::int32_t cornerValues = 24;  // x, y, z of eight corners

template <class T>
std::shared_ptr<const void> valuesAs(const std::vector<double>& values) {
  auto typed = std::make_shared<std::vector<T>>(values.size());
  for (std::size_t i = 0; i < values.size(); ++i)
    (*typed)[i] = std::isnan(values[i]) ? T{} : static_cast<T>(values[i]);
  return {typed, typed->data()};
}

/// A bit for each cell that is active.
std::shared_ptr<const std::uint8_t> activeBits(std::size_t cells,
                                               const std::function<bool(std::size_t)>& isActive) {
  auto bits = std::make_shared<std::vector<std::uint8_t>>((cells + 7) / 8);
  for (std::size_t i = 0; i < cells; ++i) {
    if (isActive(i)) (*bits)[i / 8] = static_cast<std::uint8_t>((*bits)[i / 8] | 1U << (i % 8));
  }
  return {bits, bits->data()};
}

}  // namespace

Deck Run::deck(const ReadOptions& options) const {
  try {
    StreamContext context(options);
    return *state_->deck(context);
  } catch (...) {
    throw errorInFlight();
  }
}

Deck openDeck(const std::string& path, const ReadOptions& options) {
  if (isFile(path) && recogniseFile(path).kind == FileKind::Deck) return Deck::open(path, options);
  return Run::open(path).deck(options);
}

Dense deckArray(const Deck& deck, const std::string& name, const std::string& grid,
                const ReadOptions& options) {
  try {
    StreamContext context(options);
    const DeckArray array = effectiveArray(deck, name, context.session(), grid);
    Dense dense{.type = array.whole ? Type::Int32 : Type::Float32,
                .shape = {array.size[2], array.size[1], array.size[0]},
                .data = array.whole ? valuesAs<std::int32_t>(array.values) : valuesAs<float>(array.values)};
    dense.active =
        activeBits(array.values.size(), [&](std::size_t i) { return !std::isnan(array.values[i]); });
    return dense;
  } catch (...) {
    throw errorInFlight();
  }
}

Dense deckCorners(const Deck& deck, const ReadOptions& options) {
  try {
    StreamContext context(options);
    const DeckGeometry geometry = deckGeometry(deck, context.session());
    auto corners = std::make_shared<const std::vector<float>>(geometry.corners());
    Dense dense{.type = Type::Float32,
                .shape = {geometry.size[2], geometry.size[1], geometry.size[0]},
                .data = {corners, corners->data()}};
    dense.components = cornerValues;
    if (!geometry.actnum.empty())
      dense.active =
          activeBits(geometry.actnum.size(), [&](std::size_t i) { return geometry.actnum[i] != 0; });
    return dense;
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
