#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "ByteTable.h"

namespace lumbarn {

/// A string table that hands out string numbers, from 1. Equal strings get equal numbers. Items are kept
/// without blanks on either side and characters 0 at the end, cut at the store's item width; the use count of
/// an item is the number of times it was added. Only memory running out makes an operation throw.
class LUMBARN_API AttributeStore {
 public:
  AttributeStore() = default;
  /// For items of up to that many bytes.
  explicit AttributeStore(std::int32_t width) : width_(width) {}

  std::int32_t add(std::string_view item);         ///< number of the item, added when new
  std::int32_t find(std::string_view item) const;  ///< -1 when it is not there
  /// Text of a number, empty for a number that is none. Holds until that item is replaced or the store goes.
  std::string_view item(std::int32_t number) const {
    return has(number) ? std::string_view(at(number).text) : std::string_view();
  }
  std::int32_t count() const { return static_cast<std::int32_t>(items_.size()); }
  std::int32_t useCount(std::int32_t number) const;  ///< 0 for a number that is none
  std::int32_t width() const { return width_; }
  /// Items added from now on are cut at this width, if it is more than before.
  void widen(std::int32_t nWidth) { width_ = width_ < nWidth ? nWidth : width_; }
  /// Adds items of `width` bytes each, one after the other in `texts`; gives the number of each.
  std::vector<std::int32_t> addBlock(std::span<const char> texts, std::size_t items, std::size_t width);
  /// Gives back the memory kept for growth. Every item keeps its number, those with a use count of 0 too, as
  /// vectors point to them; more can be added after.
  void shrink();
  /// Changes the text of one item; its number stays. False when it is not there. When the new text is there
  /// already, both numbers then stand for that text, and `find` gives the lower. Takes time that grows with
  /// the number of items.
  bool replace(std::string_view oldText, std::string_view newText);
  /// Adds to an item's use count, within 32 bits. False when it is not there.
  bool adjustCount(std::string_view item, std::int32_t delta);
  /// All items, blank padded to the width of the longest (at least 1).
  ByteTable all() const;

  /// The calling forms of hosts. `nItems` and `nGrow` are hints that it does not need. qOK False, with the
  /// store as it was, for a width below 1.
  void StoreInit(std::int32_t nItems, std::int32_t nWidth, std::int32_t nGrow, bool& qOK);
  /// qOK False, with nothing added and iPointers empty, when bItems holds fewer or a size is negative.
  void StoreAddBlock(std::span<const char> bItems, std::int32_t nItems, std::int32_t nWidth,
                     std::vector<std::int32_t>& iPointers, bool& qOK);
  /// Adds the first nLength bytes of bItem (all, when it has fewer) as one item. With qAddNew False an item
  /// that is there is found without counting a use, and for one that is not iPointer is -1 and qOK False, as
  /// for a negative nLength. With zSplit not empty the item ends before the first occurrence of zSplit.
  void StoreAddItem(std::string_view bItem, std::int32_t nLength, std::int32_t& iPointer, bool qAddNew,
                    std::string_view zSplit, bool& qOK);
  /// The item with a number, and its length; qOK False, with bItem empty, for a number that is none.
  void StoreGetItem(std::int32_t iPointer, std::string& bItem, std::int32_t& nLength, bool& qOK) const;
  void StoreFind(std::string_view zItem, std::int32_t& iPointer, bool& qOK) const;
  void StoreFinish(bool& qOK);
  void StoreCount(std::int32_t& nItems) const { nItems = count(); }
  void StoreGetAll(ByteTable& bItems, std::int32_t& nItems, std::int32_t& nWidth, bool& qOK) const;
  void StoreReplace(std::string_view zNew, std::string_view zOld, bool& qOK);
  void StoreAdjustCount(std::int32_t nDelta, std::string_view zItem, bool& qOK);

 private:
  struct Item {
    std::string text;
    std::int32_t uses = 0;
  };
  /// Open addressing over the items' numbers, not their texts: one look-up either finds an item or the place
  /// for a new one, and copies need no care.
  struct Slot {
    std::uint32_t hash = 0;
    std::int32_t number = 0;  ///< 0: free
  };
  bool has(std::int32_t number) const { return number >= 1 && number <= count(); }
  const Item& at(std::int32_t number) const { return items_[static_cast<std::size_t>(number) - 1]; }
  Item& at(std::int32_t number) { return items_[static_cast<std::size_t>(number) - 1]; }
  std::string_view fitted(std::string_view item) const;
  std::size_t slotOf(std::string_view text, std::uint32_t hash) const;
  void resizeSlots(std::size_t slots);
  void rebuildSlots();

  std::int32_t width_ = 1024;
  std::deque<Item> items_;   // a deque, so that views of texts hold while more are added
  std::vector<Slot> slots_;  // a power of two of them, at most half of them taken; none while empty
};

/// Sizes by `getDefaultSttributeSizes`.
struct AttributeSizes {
  std::int32_t nItems = -1;
  std::int32_t nWidth = -1;
  std::int32_t nGrow = -1;
};
LUMBARN_API AttributeSizes defaultAttributeSizes(std::int32_t iAttribute);
/// Calling form of the same; nBytes is nItems * nWidth, nGrowth and nStep the items of one growth step. An
/// unknown attribute gives -1 for all numbers.
LUMBARN_API void getDefaultSttributeSizes(std::int32_t iAttribute, std::int32_t& nBytes,
                                          std::int32_t& nGrowth, std::int32_t& nItems, std::int32_t& nWidth,
                                          std::int32_t& nStep, bool& qOK);

/// `xStore`: one store for each of the attributes 2, 4 to 12 and 14. Has none until `InitByteStorage`. Copies
/// are deep.
class LUMBARN_API AttributeStores {
 public:
  /// The store of an attribute, 1 to 14. Throws Fault 9 for a number outside or one that has no store.
  AttributeStore& operator()(std::int32_t iAttribute);
  const AttributeStore& operator()(std::int32_t iAttribute) const;
  bool has(std::int32_t iAttribute) const;
  /// Makes the stores new, empty, with their default sizes.
  void reset();

 private:
  std::array<std::optional<AttributeStore>, 14> stores_;
};

/// Calling form of `reset`. qKeep has no effect: each store is released before it is made new.
LUMBARN_API void InitByteStorage(bool qKeep, AttributeStores& xStore, bool& qOK);

}  // namespace lumbarn
