#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "../deck/qvEclipseDat.h"
#include "../init/ModelFlags.h"
#include "ReaderPart.h"

namespace lumbarn {

/// The data deck of a run, in the form that hosts know.
class DeckPart : public ReaderPart {
 public:
  using ReaderPart::ReaderPart;

  bool held() const override { return deck_ != nullptr; }
  void release() override { deck_.reset(); }
  bool damaged() const override { return false; }

  void load();
  qvEclipseDat* deck() const { return deck_.get(); }
  /// Whether questions that another part answers as well are for the deck: it holds a deck, and nothing else
  /// does, or the host asks for decks.
  bool answersFor(const ReaderPart& other) const;
  bool holdsGrid(const ReaderPart& grids) const { return answersFor(grids) && deck_->nGrids() > 0; }

  ModelFlags flags() const;
  std::int32_t units() const { return deck_ ? deck_->contents().runspec.iUnitSystem : 0; }

  std::vector<std::string> zExcludes;  ///< files not to read, for loads to come

 private:
  std::unique_ptr<qvEclipseDat> deck_;
};

}  // namespace lumbarn
