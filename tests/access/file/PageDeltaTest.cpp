// What has changed in a page, as the log keeps it.
#include <gtest/gtest.h>
#include <algorithm>

#include "access/file/LogStatement.h"
#include "access/file/support/Random.h"

namespace tavi::access {
namespace {

using Bytes = std::vector<std::uint8_t>;

Page RandomPage(test::Random& random) {
  Page page(6);
  for (std::size_t i = 0; i < kPageSize; ++i) page.SetU8(i, random.Byte());
  return page;
}

Page After(const Page& before, const Bytes& delta) {
  Page page = before;
  ApplyDelta(delta, page.AllMutable());
  return page;
}

void ExpectLeadsTo(const Page& before, const Page& after, std::size_t most) {
  const Bytes delta = DeltaBetween(before.All(), after.All());
  EXPECT_TRUE(IsDelta(delta));
  EXPECT_LE(delta.size(), most);
  EXPECT_TRUE(std::ranges::equal(After(before, delta).All(), after.All()));
}

TEST(PageDelta, LiesInBytesAsItsHeaderSays) {
  test::Random random(1);
  const Page before = RandomPage(random);
  Page after = before;
  after.SetU8(0x0C, 0x06);
  after.Put(0x1F2, before.Slice(0x1F0, 0x40));
  after.SetU8(0x1F0, 0xAA);
  after.SetU8(0x1F1, 0xBB);
  const Bytes delta = {0x0C, 0x00, 0x01, 0x00, 0x06, 0xF0, 0x01, 0x02, 0x00,
                       0xAA, 0xBB, 0xF2, 0x01, 0x40, 0x80, 0xF0, 0x01};
  EXPECT_EQ(DeltaBetween(before.All(), after.All()), delta);
  EXPECT_TRUE(std::ranges::equal(After(before, delta).All(), after.All()));
}

TEST(PageDelta, SamePagesHaveNone) {
  test::Random random(2);
  const Page page = RandomPage(random);
  EXPECT_TRUE(DeltaBetween(page.All(), page.All()).empty());
  EXPECT_TRUE(IsDelta({}));
}

TEST(PageDelta, AnyChangeOfAPageIsFound) {
  test::Random random(3);
  for (int round = 0; round < 2000; ++round) {
    const Page before = RandomPage(random);
    Page after = before;
    for (std::uint32_t change = random.Below(6); change > 0; --change) {
      const std::size_t length = 1 + random.Below(random.Below(4) == 0 ? kPageSize / 2 : 20);
      const std::size_t to = random.Below(kPageSize - length + 1);
      const std::size_t from = random.Below(kPageSize - length + 1);
      switch (random.Below(3)) {
        case 0:
          after.Fill(to, length, random.Byte());
          break;
        case 1:
          after.Put(to, after.Slice(from, length));
          break;
        default:
          for (std::size_t i = 0; i < length; ++i) after.SetU8(to + i, random.Byte());
      }
    }
    ExpectLeadsTo(before, after, kPageSize + 8);
  }
}

TEST(PageDelta, AnotherPageAltogetherTakesItsBytesAndLittleMore) {
  test::Random random(4);
  const Page before = RandomPage(random);
  ExpectLeadsTo(before, RandomPage(random), kPageSize + 8);
  ExpectLeadsTo(Page(6), before, kPageSize + 8);
}

TEST(PageDelta, WhatIsPutInOrTakenOutAnywhereIsSaidWithoutWhatItMoves) {
  test::Random random(5);
  for (std::size_t length = 1; length < 300; length += 13) {
    const Page before = RandomPage(random);
    const std::size_t place = random.Below(2000);
    const std::size_t moved = 500 + random.Below(1000);
    Page longer = before;
    longer.Put(place + length, before.Slice(place, moved));
    for (std::size_t i = 0; i < length; ++i) longer.SetU8(place + i, random.Byte());
    ExpectLeadsTo(before, longer, 2 * length + 40);
    Page shorter = before;
    shorter.Put(place, before.Slice(place + length, moved));
    ExpectLeadsTo(before, shorter, 2 * length + 40);
  }
}

TEST(PageDelta, BytesThatLeadOutOfThePageAreNone) {
  for (const Bytes& bytes : {Bytes{0x0C}, Bytes{0x0C, 0x00, 0x01, 0x00}, Bytes{0x0C, 0x00, 0x00, 0x00},
                             Bytes{0xFF, 0x0F, 0x02, 0x00, 1, 2}, Bytes{0x00, 0x00, 0x02, 0x80, 0xFF, 0x0F},
                             Bytes{0x00, 0x00, 0x02, 0x80, 0xFF}, Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}}) {
    EXPECT_FALSE(IsDelta(bytes));
    // Nor do they do harm.
    Page page(6);
    ApplyDelta(bytes, page.AllMutable());
    EXPECT_TRUE(std::ranges::equal(page.All(), Page(6).All()));
  }
}

}  // namespace
}  // namespace tavi::access
