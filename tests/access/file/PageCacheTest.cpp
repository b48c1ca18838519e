#include "access/file/PageCache.h"

#include <gtest/gtest.h>

#include <map>

#include "access/file/support/Random.h"

namespace tavi::access {
namespace {

// The mark of a page, -1 when it is not there.
int MarkOf(const PageHandle& page) {
  return page == nullptr ? -1 : page->U8(0);
}

PageHandle MakePage(PageNumber number, std::uint8_t mark) {
  auto page = std::make_shared<Page>(number);
  page->SetU8(0, mark);
  return page;
}

TEST(PageCache, GivesBackWhatWasPut) {
  PageCache cache(100 * sizeof(Page));
  EXPECT_EQ(cache.Find(5), nullptr);
  cache.Put(MakePage(5, 1));
  EXPECT_EQ(MarkOf(cache.Find(5)), 1);
  cache.Put(MakePage(5, 2));
  EXPECT_EQ(MarkOf(cache.Find(5)), 2);
  EXPECT_EQ(cache.Count(), 1u);
  cache.Erase(5);
  cache.Erase(5);
  cache.Erase(100000);
  EXPECT_EQ(cache.Find(5), nullptr);
  EXPECT_EQ(cache.Count(), 0u);
}

TEST(PageCache, NeverHoldsMoreThanItsCapacity) {
  PageCache cache(20 * sizeof(Page));
  for (PageNumber number = 0; number < 1000; ++number) {
    cache.Put(MakePage(number, 0));
    EXPECT_LE(cache.Count(), 20u);
    EXPECT_NE(cache.Find(number), nullptr);
  }
}

TEST(PageCache, APageThatIsUsedAgainAndAgainStays) {
  PageCache cache(20 * sizeof(Page));
  cache.Put(MakePage(7, 7));
  for (PageNumber number = 100; number < 1000; ++number) {
    ASSERT_NE(cache.Find(7), nullptr) << number;
    cache.Put(MakePage(number, 0));
  }
}

TEST(PageCache, HandlesOutliveTheirPlace) {
  PageCache cache(0);
  cache.Put(MakePage(7, 7));
  const PageHandle held = cache.Find(7);
  for (PageNumber number = 100; number < 300; ++number) cache.Put(MakePage(number, 0));
  EXPECT_EQ(cache.Find(7), nullptr);
  cache.Clear();
  EXPECT_EQ(MarkOf(held), 7);
  EXPECT_EQ(cache.Count(), 0u);
}

TEST(PageCache, NeverGivesAStaleOrForeignPage) {
  PageCache cache(30 * sizeof(Page));
  std::map<PageNumber, std::uint8_t> model;
  test::Random random(1);
  for (int step = 0; step < 20000; ++step) {
    const PageNumber number = random.Below(60);
    switch (random.Below(4)) {
      case 0:
        model[number] = static_cast<std::uint8_t>(step);
        cache.Put(MakePage(number, model[number]));
        break;
      case 1:
        cache.Erase(number);
        break;
      default:
        if (const PageHandle page = cache.Find(number)) {
          ASSERT_EQ(page->Number(), number);
          ASSERT_EQ(page->U8(0), model[number]);
        }
    }
  }
}

}  // namespace
}  // namespace tavi::access
