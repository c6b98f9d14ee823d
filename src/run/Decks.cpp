#include "Decks.h"

#include <cmath>
#include <vector>

#include "../deck/CellArrays.h"
#include "../files/Folder.h"
#include "../files/Recogniser.h"
#include "RunState.h"

namespace lumbarn {

namespace {

template <class T>
std::shared_ptr<const void> valuesAs(const std::vector<double>& values) {
  auto typed = std::make_shared<std::vector<T>>(values.size());
  for (std::size_t i = 0; i < values.size(); ++i)
    (*typed)[i] = std::isnan(values[i]) ? T{} : static_cast<T>(values[i]);
  return {typed, typed->data()};
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
    auto bits = std::make_shared<std::vector<std::uint8_t>>((array.values.size() + 7) / 8);
    for (std::size_t i = 0; i < array.values.size(); ++i) {
      if (!std::isnan(array.values[i]))
        (*bits)[i / 8] = static_cast<std::uint8_t>((*bits)[i / 8] | 1U << (i % 8));
    }
    dense.active = {bits, bits->data()};
    return dense;
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
