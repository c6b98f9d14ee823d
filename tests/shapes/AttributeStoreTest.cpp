#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shapes/AttributeStore.h"
#include "shapes/VectorData.h"
#include "support/Fault.h"

namespace lumbarn {
namespace {

using testing::ElementsAre;

std::vector<std::int32_t> addBlock(AttributeStore& store, std::string_view bytes, std::int32_t nWidth) {
  std::vector<std::int32_t> iPointers;
  bool qOK = false;
  store.StoreAddBlock(bytes, static_cast<std::int32_t>(bytes.size()) / nWidth, nWidth, iPointers, qOK);
  EXPECT_TRUE(qOK);
  return iPointers;
}

TEST(AttributeStore, EqualStringsShareANumberWhateverTheirPadding) {
  AttributeStore store;
  bool qOK = false;
  store.StoreInit(1, 8, 1, qOK);
  EXPECT_THAT(addBlock(store, std::string_view("WOPR    WOPR\0\0\0\0FOPT    WOPR            ", 40), 8),
              ElementsAre(1, 1, 2, 1, 3));
  EXPECT_EQ(store.useCount(1), 3);
  EXPECT_EQ(store.add(" FOPT"), 2) << "writers center texts";
  EXPECT_EQ(store.add("LONGNAME-1"), store.add("LONGNAME-2")) << "cut at the width";
  EXPECT_EQ(store.add("SEVEN C  x"), store.add("SEVEN C")) << "blanks that the cut leaves at the end go too";

  std::int32_t iPointer = 0;
  store.StoreAddItem("FOPT:1", 6, iPointer, false, ":", qOK);
  EXPECT_EQ(iPointer, 2);
  EXPECT_EQ(store.useCount(2), 2) << "looking is no use";
  store.StoreAddItem("WOPR", -1, iPointer, true, "", qOK);
  EXPECT_FALSE(qOK);
  for (const auto number : {-1, 0, 7, 32767}) EXPECT_EQ(store.item(number), "");

  std::vector<std::int32_t> iPointers{9};
  store.StoreAddBlock(std::string_view("SHORT"), 2, 8, iPointers, qOK);
  EXPECT_FALSE(qOK) << "fewer bytes than told";
  EXPECT_TRUE(iPointers.empty());
}

/// Whatever is done to a store, a plain map says what it must hold.
TEST(AttributeStore, KeepsItsWordThroughGrowthReplaceFinishAndCopies) {
  std::mt19937 random(7);
  AttributeStore store;
  bool qOK = false;
  store.StoreInit(1, 40, 1, qOK);
  std::vector<std::string> texts;
  std::unordered_map<std::string, std::int32_t> lowest;
  const auto text = [&] {
    return std::string(random() % 2 ? "P" : "a name longer than any short string ") +
           std::to_string(random() % 700);
  };
  for (int round = 0; round < 4000; ++round) {
    const auto word = text();
    if (random() % 8 != 0) {
      const auto number = store.add(word);
      if (lowest.try_emplace(word, number).second) texts.push_back(word);
      ASSERT_EQ(number, lowest.at(word));
    } else {
      const auto old = text();
      store.StoreReplace(word, old, qOK);
      ASSERT_EQ(qOK, lowest.contains(old));
      if (!qOK) continue;
      texts[static_cast<std::size_t>(lowest.at(old)) - 1] = word;
      lowest.clear();
      for (std::size_t i = 0; i < texts.size(); ++i) lowest.try_emplace(texts[i], static_cast<int>(i) + 1);
    }
    if (round % 500 == 0) store.StoreFinish(qOK);
    if (round % 700 == 0) {
      AttributeStore copy = store;
      store.add("goes with the original");
      store = AttributeStore();
      store = std::move(copy);
    }
  }
  ASSERT_EQ(store.count(), static_cast<std::int32_t>(texts.size()));
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(store.item(static_cast<std::int32_t>(i) + 1), texts[i]);
    EXPECT_EQ(store.find(texts[i]), lowest.at(texts[i]));
  }
}

TEST(AttributeStore, GivesAllItemsBlankPaddedAndCountsBelow0) {
  AttributeStore store;
  ByteTable bItems;
  std::int32_t nItems = -1, nWidth = -1;
  bool qOK = false;
  store.StoreGetAll(bItems, nItems, nWidth, qOK);
  EXPECT_TRUE(qOK && nItems == 0 && nWidth == 1);
  addBlock(store, "P1  PROD    P1  ", 4);
  store.StoreGetAll(bItems, nItems, nWidth, qOK);
  EXPECT_EQ(std::string(bItems.bytes().data(), bItems.bytes().size()), "P1  PROD    ");
  EXPECT_EQ(nItems, 3);
  store.StoreAdjustCount(-3, "P1", qOK);
  EXPECT_EQ(store.useCount(1), -1);
}

TEST(AttributeStores, ElevenOfFourteenExist) {
  AttributeStores xStore;
  bool qOK = false;
  InitByteStorage(true, xStore, qOK);
  EXPECT_EQ(xStore(9).item(xStore(9).add("A member name that is far longer than twenty")),
            "A member name that i");
  for (const auto none : {-1, 0, 1, 3, 13, 15}) EXPECT_THROW(xStore(none), Fault) << none;
  InitByteStorage(false, xStore, qOK);
  EXPECT_EQ(xStore(9).count(), 0);
}

TEST(VectorData, WordsStandWhereHostsLookForThem) {
  std::vector<VECTORDATA> xVectors(2);
  const std::int32_t order[] = {4, 5, 6, 2, 14, 11, 9, 7, 8, 12, 10};  // attributes by word
  for (std::int32_t word = 0; word < 11; ++word) setPointer(xVectors[1], order[word], 0x101 * (word + 1));
  ByteTable bPointers;
  bool qOK = false;
  getVECTORDATA(xVectors, bPointers, qOK);
  ASSERT_TRUE(qOK);
  const auto bytes = bPointers.entry(2);
  for (std::size_t word = 0; word < 10; ++word) {
    EXPECT_EQ(bytes[2 * word], static_cast<char>(word + 1));  // both bytes equal, for either byte order
    EXPECT_EQ(bytes[2 * word + 1], static_cast<char>(word + 1));
  }
  EXPECT_EQ(pointer(xVectors[1], 10), 0x101 * 11);
  EXPECT_EQ(bPointers(7, 1), '\xFF') << "-1 is not set";
  std::vector<VECTORDATA> back;
  setVECTORDATA(bPointers, back, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(back, xVectors);
  setVECTORDATA(ByteTable(23, 1), back, qOK);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(back, xVectors);
}

TEST(VectorData, NumbersBeyondSixteenBitsDoNotFitHostsHeaders) {
  std::vector<VECTORDATA> xVectors(3);
  const std::int32_t numbers[] = {32767, 40000};
  ByteTable bPointers;
  bool qOK = false;
  setPointers(xVectors, 10, numbers);
  getVECTORDATA(xVectors, bPointers, qOK);
  EXPECT_TRUE(qOK) << "the index has 32 bits";
  setPointers(xVectors, 9, numbers);
  EXPECT_EQ(xVectors[1].iMember, 40000);
  getVECTORDATA(xVectors, bPointers, qOK);
  EXPECT_FALSE(qOK);
  EXPECT_THROW(setPointer(xVectors[0], 13, 1), Fault);
}

}  // namespace
}  // namespace lumbarn
