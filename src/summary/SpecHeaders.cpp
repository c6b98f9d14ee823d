#include "SpecHeaders.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "../shapes/HeaderLayout.h"
#include "../shapes/OnlyList.h"
#include "../support/Guarded.h"
#include "../support/Text.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseSPEC";
constexpr std::size_t yieldInterval = 1000;

bool isConnectionMnemonic(std::string_view mnemonic) {
  const std::string letters = upper(mnemonic.substr(0, 2));
  return letters.starts_with('C') || letters == "LC";
}

/// Makes the origin the source of all vectors.
void addSource(SummarySpec& spec) {
  AttributeStore& store = spec.xStore(attributeSource);
  store = AttributeStore(defaultAttributeSizes(attributeSource).nWidth);
  const std::int32_t number = store.add(spec.zOrigin);
  for (VECTORDATA& xVector : spec.xVectors) setPointer(xVector, attributeSource, number);
}

/// The texts of one attribute. Vectors come in runs with the same unit, class or mnemonic, so the last text
/// is kept.
class AttributeTexts {
 public:
  AttributeTexts(const AttributeStores& stores, std::int32_t iAttribute) : store_(stores(iAttribute)) {}
  std::string_view operator()(std::int32_t number) {
    if (number != number_) text_ = store_.item(number_ = number);
    return text_;
  }

 private:
  const AttributeStore& store_;
  std::int32_t number_ = 0;
  std::string_view text_;
};

/// Where the fields of a header come from.
struct HeaderTexts {
  explicit HeaderTexts(const AttributeStores& stores)
      : source(stores(attributeSource).item(1)),
        kind(stores(attributeDataKind).item(1).substr(0, 8)),
        zClass(stores, attributeClass),
        member(stores, attributeMember),
        index(stores, attributeIndex),
        variable(stores, attributeVariable),
        verbose(stores, attributeVerbose),
        units(stores, attributeUnits) {}

  std::string_view source;
  std::string_view kind;
  AttributeTexts zClass, member, index, variable, verbose, units;
};

void fillHeader(const SummarySpec& spec, const VECTORDATA& xVector, std::string_view variable,
                HeaderTexts& texts, ByteTable& bHeaders, std::size_t iEntry) {
  const auto put = [&](std::int32_t iAttribute, std::string_view value) {
    if (!value.empty()) setAttribute(iAttribute, bHeaders, iEntry, value);
  };
  put(attributeSource, texts.source);
  put(attributeDataKind, texts.kind);
  const std::string_view zClass = texts.zClass(xVector.iClass);
  put(attributeClass, zClass);
  if (spec.nLGRs > 0 && zClass == "LGR") {
    put(attributeLGRName, spec.text(xVector, attributeLGRName));
    put(attributeLGRClass, spec.text(xVector, attributeLGRClass));
  }
  put(attributeMember, texts.member(xVector.iMember));
  put(attributeIndex, texts.index(xVector.iIndex));
  put(attributeVariable, variable);
  put(attributeVerbose, texts.verbose(xVector.iVerbose));
  put(attributeUnits, texts.units(xVector.iUnits));
}

/// Headers of the vectors with mask True that are `wanted` by their mnemonics; the mask loses the others.
template <class Wanted>
std::optional<ByteTable> headersOf(SummarySpec& spec, std::vector<bool>& qMask, Session& session,
                                   Wanted wanted) {
  addSource(spec);
  HeaderTexts texts(spec.xStore);
  ByteTable headers(headerWidth, static_cast<std::size_t>(std::ranges::count(qMask, true)));
  std::size_t entry = 0;
  for (std::size_t i = 0; i < spec.xVectors.size(); ++i) {
    if ((i + 1) % yieldInterval == 0 && session.yield()) return std::nullopt;
    if (!qMask[i]) continue;
    std::string_view variable = texts.variable(spec.xVectors[i].iVariable);
    variable = trim(variable.substr(0, variable.find('\t')));
    qMask[i] = wanted(variable);
    if (qMask[i]) fillHeader(spec, spec.xVectors[i], variable, texts, headers, ++entry);
  }
  headers.resize(entry);
  return headers;
}

}  // namespace

std::optional<ByteTable> makeHeaders(SummarySpec& spec, const std::vector<bool>& qMask, Session& session) {
  return inRoutine(className, "ReturnHeaders", [&]() -> std::optional<ByteTable> {
    if (!spec.qLoaded) return std::nullopt;
    std::vector<bool> mask = qMask;
    auto headers = headersOf(spec, mask, session, [](std::string_view) { return true; });
    if (headers) session.part<SelectionState>().nOnly = static_cast<std::int32_t>(headers->entries());
    return headers;
  });
}

std::optional<ByteTable> makeConnectionHeaders(SummarySpec& spec, std::vector<bool>& qMask,
                                               Session& session) {
  return inRoutine(className, "ReturnHeaders", [&]() -> std::optional<ByteTable> {
    if (!spec.qLoaded) return std::nullopt;
    qMask.assign(spec.xVectors.size(), true);
    auto headers = headersOf(spec, qMask, session, isConnectionMnemonic);
    return headers && headers->entries() > 0 ? std::move(headers) : std::nullopt;
  });
}

std::optional<ConnectionLengths> connectionLengths(const SummarySpec& spec, const std::vector<bool>& qMask) {
  return inRoutine(className, "getHorizontalLengths", [&]() -> std::optional<ConnectionLengths> {
    if (spec.sLENGTHS.size() != qMask.size()) return std::nullopt;
    ConnectionLengths lengths;
    for (std::size_t i = 0; i < qMask.size(); ++i) {
      if (qMask[i]) lengths.values.push_back(spec.sLENGTHS[i]);
    }
    if (!spec.zLENUNITS.empty()) lengths.unit = spec.zLENUNITS.front();
    return lengths;
  });
}

bool giveStoreHeaders(SummarySpec& spec, AttributeStores& xStores, ByteTable& bPointers, Session& session) {
  return inRoutine(className, "getStoreHeaders", [&] {
    if (!spec.qLoaded) return false;
    addSource(spec);
    xStores = spec.xStore;
    auto packed = packVectors(spec.keptVectors());
    if (packed) {
      bPointers = std::move(*packed);
    } else {
      session.diagnose({.message = Message::HeaderNumbers,
                        .path = spec.zFileName,
                        .expected = "at most 32767",
                        .found = std::to_string(spec.xStore(attributeMember).count()) + " names and " +
                                 std::to_string(spec.xStore(attributeVariable).count()) + " mnemonics",
                        .action = "returned no headers; headers of 233 bytes have no such limit"});
    }
    return packed.has_value();
  });
}

}  // namespace lumbarn
