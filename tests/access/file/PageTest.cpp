#include "access/file/Page.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/values/Error.h"

namespace tavi::access {
namespace {

TEST(Page, IntegersAreLittleEndian) {
  Page page(9);
  page.SetU32(100, 0x04030201);
  EXPECT_EQ(page.U8(100), 1);
  EXPECT_EQ(page.U16(100), 0x0201);
  EXPECT_EQ(page.U24(101), 0x040302u);
  EXPECT_EQ(page.U32(100), 0x04030201u);
  page.SetU24(200, 0xFFAABBCC);
  EXPECT_EQ(page.U32(200), 0x00AABBCCu);
  page.SetU16(300, 0xBEEF);
  EXPECT_EQ(page.U8(300), 0xEF);
}

TEST(Page, ItsVeryEndCanBeReadAndWritten) {
  Page page(9);
  page.SetU32(kPageSize - 4, 7);
  EXPECT_EQ(page.U32(kPageSize - 4), 7u);
  EXPECT_EQ(page.Slice(kPageSize, 0).size(), 0u);
  EXPECT_EQ(page.Slice(0, kPageSize).size(), kPageSize);
}

TEST(Page, PlacesPastTheEndAreErrorsThatNamePageAndOffset) {
  Page page(77);
  try {
    static_cast<void>(page.U32(kPageSize - 3));
    FAIL();
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    EXPECT_EQ(error.Source(), "Microsoft JET Database Engine");
    EXPECT_EQ(error.Description(),
              "The database is damaged: on page 77 4 bytes at offset 4093 would lie past the end of the page. Restore "
              "the file from a backup.");
  }
  const std::vector<std::uint8_t> bytes(10);
  EXPECT_THROW(static_cast<void>(page.U8(kPageSize)), Error);
  EXPECT_THROW(static_cast<void>(page.U16(kPageSize - 1)), Error);
  EXPECT_THROW(static_cast<void>(page.U24(kPageSize - 2)), Error);
  EXPECT_THROW(static_cast<void>(page.Slice(1, kPageSize)), Error);
  EXPECT_THROW(static_cast<void>(page.Slice(~std::size_t{0}, 2)), Error);
  EXPECT_THROW(page.SetU8(kPageSize, 0), Error);
  EXPECT_THROW(page.SetU16(kPageSize - 1, 0), Error);
  EXPECT_THROW(page.SetU24(kPageSize - 2, 0), Error);
  EXPECT_THROW(page.SetU32(kPageSize - 3, 0), Error);
  EXPECT_THROW(page.Put(kPageSize - 9, bytes), Error);
  EXPECT_THROW(page.Fill(5, ~std::size_t{0}, 1), Error);
}

TEST(Page, PutWorksWithinThePageItself) {
  Page page(1);
  for (std::uint8_t i = 0; i < 8; ++i) page.SetU8(i, i);
  page.Put(2, page.Slice(0, 6));
  EXPECT_EQ(page.U8(2), 0);
  EXPECT_EQ(page.U8(7), 5);
  page.Put(0, page.Slice(2, 6));
  EXPECT_EQ(page.U8(0), 0);
  EXPECT_EQ(page.U8(5), 5);
}

TEST(Page, CopyFromKeepsTheNumber) {
  Page one(1);
  Page two(2);
  one.SetU8(5, 42);
  two.CopyFrom(one);
  EXPECT_EQ(two.Number(), 2u);
  EXPECT_EQ(two.U8(5), 42);
}

TEST(RowPointer, IsStoredWithTheRowInTheLowByte) {
  EXPECT_EQ((RowPointer{0x19, 3}.Packed()), 0x1903u);
  EXPECT_EQ(RowPointer::FromPacked(0x00001903), (RowPointer{0x19, 3}));
  EXPECT_TRUE(RowPointer{}.IsNone());
  EXPECT_FALSE((RowPointer{0, 1}.IsNone()));
}

}  // namespace
}  // namespace tavi::access
