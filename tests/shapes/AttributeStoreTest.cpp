#include <array>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shapes/AttributeStore.h"
#include "shapes/HeaderLayout.h"
#include "shapes/VectorData.h"
#include "support/Fault.h"

namespace lumbarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(AttributeStore, EqualStringsShareANumberWhateverTheirPadding) {
  AttributeStore store;
  bool qOK = false;
  store.StoreInit(1, 8, 1, qOK);
  std::vector<std::int32_t> iPointers;
  const std::string_view block("WOPR    WOPR\0\0\0\0FOPT    WOPR            ", 40);
  store.StoreAddBlock(block, 5, 8, iPointers, qOK);
  EXPECT_THAT(iPointers, ElementsAre(1, 1, 2, 1, 3));
  EXPECT_EQ(store.useCount(1), 3);
  EXPECT_EQ(store.add(" FOPT"), 2) << "writers center texts";
  EXPECT_EQ(store.add("LONGNAME-1"), store.add("LONGNAME-2")) << "truncated at the width";
  EXPECT_EQ(store.add("SEVEN C  x"), store.add("SEVEN C")) << "without the blanks before the truncation";
  for (const auto number : {-1, 0, 7, 32767}) EXPECT_EQ(store.item(number), "");
  store.StoreAddBlock(std::string_view("SHORT"), 2, 8, iPointers, qOK);
  EXPECT_FALSE(qOK) << "fewer bytes than stated";
  EXPECT_THAT(iPointers, IsEmpty());
}

TEST(AttributeStore, OperationsOfHosts) {
  AttributeStore store;
  ByteTable bItems;
  std::int32_t nItems = -1, nWidth = -1, iPointer = 0;
  std::string zItem;
  bool qOK = false;
  store.StoreGetAll(bItems, nItems, nWidth, qOK);
  EXPECT_TRUE(qOK && nItems == 0 && nWidth == 1);
  for (const char* item : {"P1", "PROD", "P1"}) store.StoreAddItem(item, 4, iPointer, true, "", qOK);
  store.StoreGetAll(bItems, nItems, nWidth, qOK);
  EXPECT_EQ(std::string(bItems.bytes().data(), bItems.bytes().size()), "P1  PROD");
  store.StoreCount(nItems);
  EXPECT_EQ(nItems, 2);
  store.StoreAddItem("PROD:1", 6, iPointer, false, ":", qOK);
  EXPECT_TRUE(qOK && iPointer == 2 && store.useCount(2) == 1) << "a search does not count";
  store.StoreAddItem("PROD", -1, iPointer, true, "", qOK);
  EXPECT_FALSE(qOK);
  store.StoreFind("P1", iPointer, qOK);
  EXPECT_TRUE(qOK && iPointer == 1);
  store.StoreGetItem(2, zItem, nWidth, qOK);
  EXPECT_TRUE(qOK && zItem == "PROD" && nWidth == 4);
  store.StoreGetItem(3, zItem, nWidth, qOK);
  EXPECT_FALSE(qOK);
  store.StoreAdjustCount(-3, "P1", qOK);
  EXPECT_EQ(store.useCount(1), -1);
  std::int32_t nBytes = 0, nGrowth = 0, nStep = 0;
  getDefaultSttributeSizes(attributeMember, nBytes, nGrowth, nItems, nWidth, nStep, qOK);
  EXPECT_EQ((std::array{nBytes, nGrowth, nItems, nWidth, nStep}), (std::array{100000, 5000, 5000, 20, 5000}));
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
  std::vector<VECTORDATA> xVectors;
  const std::int32_t numbers[] = {32767, 40000};
  ByteTable bPointers;
  bool qOK = false;
  redimVECTORDATAArray(3, true, xVectors, qOK);
  ASSERT_TRUE(qOK && xVectors.size() == 3);
  setPointers(xVectors, 10, numbers);
  getVECTORDATA(xVectors, bPointers, qOK);
  EXPECT_TRUE(qOK) << "the index has 32 bits";
  setPointers(xVectors, 9, numbers);
  EXPECT_EQ(xVectors[1].iMember, 40000);
  getVECTORDATA(xVectors, bPointers, qOK);
  EXPECT_FALSE(qOK);
  EXPECT_THROW(setPointer(xVectors[0], 13, 1), Fault);
  InitVECTORDATA(xVectors[0], qOK);
  EXPECT_EQ(xVectors[0], VECTORDATA());
  redimVECTORDATAArray(2, true, xVectors, qOK);
  EXPECT_EQ(xVectors[1].iMember, 40000);
  InitVECTORDATAArray(xVectors, qOK);
  EXPECT_EQ(xVectors[1], VECTORDATA());
  setPointers(xVectors, 9, numbers);
  redimVECTORDATAArray(0, false, xVectors, qOK);
  EXPECT_THAT(xVectors, ElementsAre(VECTORDATA()));
}

}  // namespace
}  // namespace lumbarn
