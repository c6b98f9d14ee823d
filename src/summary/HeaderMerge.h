#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "../shapes/AttributeStore.h"
#include "../shapes/ByteTable.h"
#include "SummaryMatch.h"

namespace lumbarn {

/// The headers of two runs of a restart chain, "old" and "main", as in SummaryMerge.h: records of 233 bytes,
/// or string numbers into stores. Records match by `matchingKey` of their texts as they are, as hosts have
/// nothing else; `matchingKeys` also knows how long names can be.

std::vector<std::string> headerKeys(const ByteTable& bHeaders);
/// Nothing for entries that do not have 24 bytes.
std::optional<std::vector<std::string>> headerKeys(const AttributeStores& xStore, const ByteTable& bPointers);

/// Nothing when the entries of one are too short.
std::optional<TextPairs> pairHeaders(const ByteTable& bOld, const ByteTable& bMain);
std::optional<TextPairs> pairHeaders(const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                                     const AttributeStores& xStoreMain, const ByteTable& bPointersMain);

/// Adds headers of old vectors, numbered from 1. Throws Fault 9, with nothing added, for one that is not
/// there.
void addHeaders(const ByteTable& bOld, std::span<const std::int32_t> iNew, ByteTable& bMain);
/// False, with no numbers added, when they do not fit their words.
bool addHeaders(const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                std::span<const std::int32_t> iNew, AttributeStores& xStoreMain, ByteTable& bPointersMain);

}  // namespace lumbarn
