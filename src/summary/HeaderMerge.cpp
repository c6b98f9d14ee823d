#include "HeaderMerge.h"

#include <algorithm>
#include <array>
#include <utility>

#include "../shapes/HeaderLayout.h"
#include "../shapes/VectorData.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"

namespace lumbarn {
namespace {

constexpr const char* className = "SummaryMerge";

template <class Text>
std::string keyOf(Text text) {
  return matchingKey({text(attributeVariable), text(attributeClass), text(attributeMember),
                      text(attributeIndex), text(attributeLGRName), text(attributeLGRClass)});
}

/// The vector with its texts in the main stores.
VECTORDATA carryOver(const VECTORDATA& xVector, const AttributeStores& xOld, AttributeStores& xMain) {
  VECTORDATA carried;
  for (std::int32_t iAttribute = 1; iAttribute <= 14; ++iAttribute) {
    if (!xOld.has(iAttribute) || !xMain.has(iAttribute)) continue;
    const std::int32_t number = pointer(xVector, iAttribute);
    if (number < 1) continue;
    xMain(iAttribute).widen(xOld(iAttribute).width());  // a run with longer names
    setPointer(carried, iAttribute, xMain(iAttribute).add(xOld(iAttribute).item(number)));
  }
  return carried;
}

}  // namespace

std::vector<std::string> headerKeys(const ByteTable& bHeaders) {
  return inRoutine(className, "createSummaryList", [&] {
    std::vector<std::string> keys;
    keys.reserve(bHeaders.entries());
    for (std::size_t i = 1; i <= bHeaders.entries(); ++i) {
      keys.push_back(keyOf([&](std::int32_t iAttribute) {
        const HeaderField field = headerField(iAttribute);
        return bHeaders.get(i, field.firstByte, field.width);
      }));
    }
    return keys;
  });
}

std::optional<std::vector<std::string>> headerKeys(const AttributeStores& xStore,
                                                   const ByteTable& bPointers) {
  return inRoutine(className, "createStoreSummaryList", [&]() -> std::optional<std::vector<std::string>> {
    const auto vectors = unpackVectors(bPointers);
    if (!vectors) return std::nullopt;
    std::vector<std::string> keys;
    keys.reserve(vectors->size());
    for (const VECTORDATA& xVector : *vectors) {
      keys.push_back(keyOf(
          [&](std::int32_t iAttribute) { return xStore(iAttribute).item(pointer(xVector, iAttribute)); }));
    }
    return keys;
  });
}

std::optional<TextPairs> pairHeaders(const ByteTable& bOld, const ByteTable& bMain) {
  return inRoutine(className, "checkSummaryList", [&]() -> std::optional<TextPairs> {
    if (bOld.width() < headerWidth || bMain.width() < headerWidth) return std::nullopt;
    return pairTexts(headerKeys(bOld), headerKeys(bMain));
  });
}

std::optional<TextPairs> pairHeaders(const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                                     const AttributeStores& xStoreMain, const ByteTable& bPointersMain) {
  return inRoutine(className, "checkStoreSummaryList", [&]() -> std::optional<TextPairs> {
    const auto old = headerKeys(xStoreOld, bPointersOld);
    const auto main = old ? headerKeys(xStoreMain, bPointersMain) : std::nullopt;
    if (!main) return std::nullopt;
    return pairTexts(*old, *main);
  });
}

void addHeaders(const ByteTable& bOld, std::span<const std::int32_t> iNew, ByteTable& bMain) {
  inRoutine(className, "mergeHeaders", [&] {
    if (iNew.empty()) return;
    const auto there = [&](std::int32_t n) {
      return n >= 1 && static_cast<std::size_t>(n) <= bOld.entries();
    };
    if (bOld.width() < headerWidth || bMain.width() < headerWidth || !std::ranges::all_of(iNew, there)) {
      throw Fault(FaultNumber::Subscript);
    }
    std::size_t entry = bMain.entries();
    bMain.resize(entry + iNew.size());
    for (const std::int32_t number : iNew) {
      const auto source = bOld.entry(static_cast<std::size_t>(number)).first(headerWidth);
      std::ranges::copy(source, bMain.entry(++entry).begin());
    }
  });
}

bool addHeaders(const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                std::span<const std::int32_t> iNew, AttributeStores& xStoreMain, ByteTable& bPointersMain) {
  return inRoutine(className, "mergeStoreHeaders", [&] {
    if (iNew.empty()) return true;
    const auto old = unpackVectors(bPointersOld);
    auto main = old ? unpackVectors(bPointersMain) : std::nullopt;
    if (!main) return false;
    for (const std::int32_t number : iNew) {
      main->push_back(carryOver(old->at(static_cast<std::size_t>(number - 1)), xStoreOld, xStoreMain));
    }
    auto packed = packVectors(*main);
    if (packed) bPointersMain = std::move(*packed);
    return packed.has_value();
  });
}

}  // namespace lumbarn
