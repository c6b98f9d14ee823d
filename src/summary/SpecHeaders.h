#pragma once

#include <optional>
#include <string>
#include <vector>

#include "../shapes/AttributeStore.h"
#include "../shapes/ByteTable.h"
#include "../support/Session.h"
#include "SummarySpec.h"

namespace lumbarn {

/// Headers of the vectors of a specification that was read. The origin becomes their source, as an item of
/// the specification's stores too. Nothing, without a report, when nothing was read or the load is cancelled.

/// Of the vectors with mask True, 233 bytes each. Sets the session's count of only-list entries to their
/// number.
std::optional<ByteTable> makeHeaders(SummarySpec& spec, const std::vector<bool>& qMask, Session& session);

/// Of all connection vectors (mnemonics in C and LC), dummies too. Nothing when there are none either. qMask
/// gets one entry per vector of the file.
std::optional<ByteTable> makeConnectionHeaders(SummarySpec& spec, std::vector<bool>& qMask, Session& session);

/// LENGTHS of the vectors with mask True. Nothing when LENGTHS has not one value for each vector.
struct ConnectionLengths {
  std::vector<float> values;
  std::string unit;
};
std::optional<ConnectionLengths> connectionLengths(const SummarySpec& spec, const std::vector<bool>& qMask);

/// The stores, and 24 bytes of string numbers into them for each vector with mask True. False when they do
/// not fit, with a Diagnosis; the stores are then given alone.
bool giveStoreHeaders(SummarySpec& spec, AttributeStores& xStores, ByteTable& bPointers, Session& session);

}  // namespace lumbarn
