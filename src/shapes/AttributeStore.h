#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ByteTable.h"

namespace lumbarn {

/// A string table that hands out string numbers, from 1. Equal strings get equal numbers. Items are kept
/// without trailing blanks and characters 0, cut at the store's item width; the use count of an item is the
/// number of times it was added.
class AttributeStore {
 public:
  /// Prepares an empty store. `nItems` and `nGrow` are hints.
  void StoreInit(std::int32_t nItems, std::int32_t nWidth, std::int32_t nGrow, bool& qOK);
  /// Adds nItems items of nWidth bytes each; gives the number of each in iPointers, sized here.
  void StoreAddBlock(std::span<const char> bItems, std::int32_t nItems, std::int32_t nWidth,
                     std::vector<std::int32_t>& iPointers, bool& qOK);
  /// Adds the first nLength bytes of bItem as one item. With qAddNew False an item that is not there is not
  /// added, iPointer is -1 and qOK False. With zSplit not empty the item ends before the first occurrence of
  /// zSplit.
  void StoreAddItem(std::string_view bItem, std::int32_t nLength, std::int32_t& iPointer, bool qAddNew,
                    std::string_view zSplit, bool& qOK);
  /// The item with a number, and its length; qOK False, with bItem empty, for a number that is none.
  void StoreGetItem(std::int32_t iPointer, std::string& bItem, std::int32_t& nLength, bool& qOK) const;
  void StoreFind(std::string_view zItem, std::int32_t& iPointer, bool& qOK) const;
  void StoreFinish(bool& qOK);
  void StoreCount(std::int32_t& nItems) const { nItems = static_cast<std::int32_t>(items_.size()); }
  /// All items, blank padded, nWidth being the width of the longest (at least 1).
  void StoreGetAll(ByteTable& bItems, std::int32_t& nItems, std::int32_t& nWidth, bool& qOK) const;
  /// Changes the text of one item; its number stays. qOK False when zOld is not there. When zNew is there
  /// already, both numbers then stand for that text, and StoreFind gives the lower.
  void StoreReplace(std::string_view zNew, std::string_view zOld, bool& qOK);
  void StoreAdjustCount(std::int32_t nDelta, std::string_view zItem, bool& qOK);

  /// The same without the host's calling form, for use inside.
  std::int32_t add(std::string_view item);           ///< number of the item, added when new
  std::int32_t find(std::string_view item) const;    ///< -1 when it is not there
  std::string_view item(std::int32_t number) const;  ///< empty for a number that is none
  std::int32_t count() const { return static_cast<std::int32_t>(items_.size()); }
  std::int32_t useCount(std::int32_t number) const;
  std::int32_t width() const { return width_; }

 private:
  struct Item {
    std::string text;
    std::int32_t uses = 0;
  };
  std::int32_t width_ = 1024;
  std::deque<Item> items_;  // a deque, so that the keys below keep pointing at the texts
  std::unordered_map<std::string_view, std::int32_t> numbers_;
};

/// Sizes by `getDefaultSttributeSizes`.
struct AttributeSizes {
  std::int32_t nItems = -1;
  std::int32_t nWidth = -1;
  std::int32_t nGrow = -1;
};
AttributeSizes defaultAttributeSizes(std::int32_t iAttribute);
/// Calling form of the same; nBytes is nItems * nWidth, nGrowth and nStep the items of one growth step. An
/// unknown attribute gives -1 for all numbers.
void getDefaultSttributeSizes(std::int32_t iAttribute, std::int32_t& nBytes, std::int32_t& nGrowth,
                              std::int32_t& nItems, std::int32_t& nWidth, std::int32_t& nStep, bool& qOK);

/// `xStore`: one store for each of the attributes 2, 4 to 12 and 14. Copies are deep.
class AttributeStores {
 public:
  /// The store of an attribute, 1 to 14. Throws Fault 9 for a number outside or one that has no store.
  AttributeStore& operator()(std::int32_t iAttribute);
  const AttributeStore& operator()(std::int32_t iAttribute) const;
  bool has(std::int32_t iAttribute) const;

 private:
  friend void InitByteStorage(bool qKeep, AttributeStores& xStore, bool& qOK);
  std::array<std::optional<AttributeStore>, 14> stores_;
};

/// Makes the stores new, empty, with their default sizes; with qKeep False all 14 are released first (the
/// outcome is the same, but the memory is given back before new is taken).
void InitByteStorage(bool qKeep, AttributeStores& xStore, bool& qOK);

}  // namespace lumbarn
