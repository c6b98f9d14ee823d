// The calling forms of attribute stores.

#include "AttributeStore.h"

namespace lumbarn {

void AttributeStore::StoreInit(std::int32_t, std::int32_t nWidth, std::int32_t, bool& qOK) {
  qOK = nWidth >= 1;
  if (qOK) *this = AttributeStore(nWidth);
}

void AttributeStore::StoreAddBlock(std::span<const char> bItems, std::int32_t nItems, std::int32_t nWidth,
                                   std::vector<std::int32_t>& iPointers, bool& qOK) {
  qOK = false;
  iPointers.clear();
  if (nItems < 0 || nWidth < 0) return;
  const auto items = static_cast<std::size_t>(nItems);
  const auto width = static_cast<std::size_t>(nWidth);
  if (items * width > bItems.size()) return;
  iPointers = addBlock(bItems, items, width);
  qOK = true;
}

void AttributeStore::StoreAddItem(std::string_view bItem, std::int32_t nLength, std::int32_t& iPointer,
                                  bool qAddNew, std::string_view zSplit, bool& qOK) {
  qOK = false;
  iPointer = -1;
  if (nLength < 0) return;
  auto text = bItem.substr(0, static_cast<std::size_t>(nLength));
  if (!zSplit.empty()) text = text.substr(0, text.find(zSplit));
  iPointer = qAddNew ? add(text) : find(text);
  qOK = iPointer > 0;
}

void AttributeStore::StoreGetItem(std::int32_t iPointer, std::string& bItem, std::int32_t& nLength,
                                  bool& qOK) const {
  bItem = item(iPointer);
  nLength = static_cast<std::int32_t>(bItem.size());
  qOK = has(iPointer);
}

void AttributeStore::StoreFind(std::string_view zItem, std::int32_t& iPointer, bool& qOK) const {
  iPointer = find(zItem);
  qOK = iPointer > 0;
}

void AttributeStore::StoreFinish(bool& qOK) {
  qOK = false;
  shrink();
  qOK = true;
}

void AttributeStore::StoreGetAll(ByteTable& bItems, std::int32_t& nItems, std::int32_t& nWidth,
                                 bool& qOK) const {
  qOK = false;
  bItems = all();
  nItems = count();
  nWidth = static_cast<std::int32_t>(bItems.width());
  qOK = true;
}

void AttributeStore::StoreReplace(std::string_view zNew, std::string_view zOld, bool& qOK) {
  qOK = false;
  qOK = replace(zOld, zNew);
}

void AttributeStore::StoreAdjustCount(std::int32_t nDelta, std::string_view zItem, bool& qOK) {
  qOK = adjustCount(zItem, nDelta);
}

void getDefaultSttributeSizes(std::int32_t iAttribute, std::int32_t& nBytes, std::int32_t& nGrowth,
                              std::int32_t& nItems, std::int32_t& nWidth, std::int32_t& nStep, bool& qOK) {
  const auto sizes = defaultAttributeSizes(iAttribute);
  nItems = sizes.nItems;
  nWidth = sizes.nWidth;
  nGrowth = sizes.nGrow;
  nStep = sizes.nGrow;
  nBytes = sizes.nItems < 0 ? -1 : sizes.nItems * sizes.nWidth;
  qOK = true;
}

void InitByteStorage(bool, AttributeStores& xStore, bool& qOK) {
  qOK = false;
  xStore.reset();
  qOK = true;
}

}  // namespace lumbarn
