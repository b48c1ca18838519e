#include "access/file/UsageMap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "access/file/Format.h"
#include "access/file/support/ClubPaths.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/Random.h"
#include "access/file/support/SmallDatabase.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

namespace data = format::data;
namespace usage = format::usage;

using test::kPath;
using test::MakeSmallDatabase;
using test::MemoryFileSystem;

class UsageMapTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Pager::Create(*memory_, kPath, MakeSmallDatabase(8));
    pager_ = Pager::Open(memory_, kPath, {});
    pager_->BeginWrite();
    row_ = PageAllocator(*pager_).AddUsageMap(0);
  }

  // Makes the file have at least `count` pages.
  void GrowTo(PageNumber count) {
    PageAllocator allocator(*pager_);
    while (pager_->PageCount() < count) static_cast<void>(allocator.Allocate());
  }
  // Start and length of a row as its page's directory says.
  std::pair<std::size_t, std::size_t> Extent(RowPointer row) {
    const PageHandle page = pager_->Read(row.page);
    const std::size_t start = page->U16(data::kRowDirectoryOffset + 2 * row.row) & data::kRowOffsetMask;
    const std::size_t end =
        row.row == 0 ? kPageSize : page->U16(data::kRowDirectoryOffset + 2 * row.row - 2) & data::kRowOffsetMask;
    return {start, end - start};
  }
  std::uint8_t Kind(RowPointer row) { return pager_->Read(row.page)->U8(Extent(row).first); }
  std::uint32_t Start(RowPointer row) {
    return pager_->Read(row.page)->U32(Extent(row).first + usage::kInlineStartOffset);
  }
  void ExpectFreeBytesExact(PageNumber number) {
    const PageHandle page = pager_->Read(number);
    const std::size_t count = page->U16(data::kRowCountOffset);
    const std::size_t lowest = page->U16(data::kRowDirectoryOffset + 2 * (count - 1)) & data::kRowOffsetMask;
    EXPECT_EQ(page->U16(data::kFreeBytesOffset), lowest - (14 + 2 * count));
  }
  std::string FailureOf(const std::function<void()>& action) {
    try {
      action();
      return "";
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
      return error.Description();
    }
  }

  std::shared_ptr<MemoryFileSystem> memory_ = std::make_shared<MemoryFileSystem>();
  std::unique_ptr<Pager> pager_;
  RowPointer row_;
};

TEST_F(UsageMapTest, AFreshMapIsEmptyAndInline) {
  const UsageMap map(*pager_, row_);
  EXPECT_EQ(Extent(row_).second, 69u);
  EXPECT_EQ(Kind(row_), usage::kKindInline);
  EXPECT_TRUE(map.Pages().empty());
  EXPECT_TRUE(map.BitmapPages().empty());
  EXPECT_FALSE(map.Contains(0));
  EXPECT_FALSE(map.Next(0).has_value());
  EXPECT_EQ(map.Row(), row_);
}

TEST_F(UsageMapTest, AMapThatIsNotThereIsEmpty) {
  UsageMap map(*pager_, {});
  EXPECT_TRUE(map.Pages().empty());
  EXPECT_TRUE(map.BitmapPages().empty());
  EXPECT_FALSE(map.Contains(5));
  EXPECT_FALSE(map.Next(0).has_value());
  map.Remove(5);
  EXPECT_THROW(map.Add(5), Error);
}

TEST_F(UsageMapTest, KeepsItsMembersInOrder) {
  GrowTo(400);
  UsageMap map(*pager_, row_);
  for (const PageNumber page : {300U, 17U, 0U, 8U, 7U, 16U, 399U}) map.Add(page);
  map.Add(17);
  EXPECT_EQ(map.Pages(), (std::vector<PageNumber>{0, 7, 8, 16, 17, 300, 399}));
  EXPECT_EQ(map.Next(0), 0u);
  EXPECT_EQ(map.Next(1), 7u);
  EXPECT_EQ(map.Next(8), 8u);
  EXPECT_EQ(map.Next(18), 300u);
  EXPECT_EQ(map.Next(400), std::nullopt);
  map.Remove(8);
  map.Remove(9);
  map.Remove(100000);
  EXPECT_EQ(map.Next(8), 16u);
}

TEST_F(UsageMapTest, BitsAreStoredLeastSignificantFirst) {
  UsageMap(*pager_, row_).Add(11);
  const PageHandle page = pager_->Read(row_.page);
  EXPECT_EQ(page->U8(Extent(row_).first + usage::kInlineBitmapOffset + 1), 8);
}

TEST_F(UsageMapTest, MembersPastTheEndOfTheFileAreLeftOut) {
  UsageMap map(*pager_, row_);
  map.Add(5);
  map.Add(200);
  EXPECT_EQ(map.Pages(), std::vector<PageNumber>{5});
  EXPECT_FALSE(map.Next(6).has_value());
  EXPECT_TRUE(map.Contains(200));
}

TEST_F(UsageMapTest, TheStartMovesWhenAllMembersThenFit) {
  GrowTo(1400);
  UsageMap map(*pager_, row_);
  map.Add(700);
  EXPECT_EQ(Start(row_), 696u);
  EXPECT_EQ(Extent(row_).second, 69u);
  map.Add(1207);
  EXPECT_EQ(Start(row_), 696u);
  map.Add(800);
  map.Remove(700);
  map.Add(1300);
  EXPECT_EQ(Start(row_), 800u);
  EXPECT_EQ(Extent(row_).second, 69u);
  EXPECT_EQ(map.Pages(), (std::vector<PageNumber>{800, 1207, 1300}));
  map.Add(790);
  EXPECT_EQ(Start(row_), 784u);
  EXPECT_EQ(map.Pages(), (std::vector<PageNumber>{790, 800, 1207, 1300}));
}

TEST_F(UsageMapTest, TheRowIsMadeLongerInStepsOfFourBytes) {
  GrowTo(900);
  UsageMap map(*pager_, row_);
  map.Add(6);
  map.Add(511);
  EXPECT_EQ(Extent(row_).second, 69u);
  map.Add(512);
  EXPECT_EQ(Extent(row_).second, 73u);
  map.Add(543);
  EXPECT_EQ(Extent(row_).second, 73u);
  map.Add(544);
  EXPECT_EQ(Extent(row_).second, 77u);
  map.Add(863);
  EXPECT_EQ(Extent(row_).second, 113u);
  EXPECT_EQ(Kind(row_), usage::kKindInline);
  EXPECT_EQ(Start(row_), 0u);
  EXPECT_EQ(map.Pages(), (std::vector<PageNumber>{6, 511, 512, 543, 544, 863}));
  ExpectFreeBytesExact(row_.page);
}

TEST_F(UsageMapTest, LengtheningLeavesTheOtherRowsOfThePageAsTheyWere) {
  GrowTo(700);
  PageAllocator allocator(*pager_);
  std::vector<RowPointer> rows = {row_};
  for (int i = 0; i < 6; ++i) rows.push_back(allocator.AddUsageMap(row_.page));
  for (std::size_t i = 0; i < rows.size(); ++i) UsageMap(*pager_, rows[i]).Add(static_cast<PageNumber>(10 + i));
  allocator.RemoveUsageMap(rows[4]);
  UsageMap(*pager_, rows[2]).Add(600);
  UsageMap(*pager_, rows[0]).Add(650);
  UsageMap(*pager_, rows[6]).Add(699);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (i == 4) continue;
    std::vector<PageNumber> expected = {static_cast<PageNumber>(10 + i)};
    if (i == 2) expected.push_back(600);
    if (i == 0) expected.push_back(650);
    if (i == 6) expected.push_back(699);
    EXPECT_EQ(UsageMap(*pager_, rows[i]).Pages(), expected) << i;
  }
  EXPECT_NE(FailureOf([&] { static_cast<void>(UsageMap(*pager_, rows[4]).Pages()); }), "");
  ExpectFreeBytesExact(row_.page);
}

TEST_F(UsageMapTest, AMapThatSpansTooMuchBecomesAReferenceMap) {
  GrowTo(1000);
  UsageMap map(*pager_, row_);
  map.Add(6);
  map.Add(864);
  EXPECT_EQ(Kind(row_), usage::kKindReference);
  EXPECT_EQ(Extent(row_).second, 69u);
  ASSERT_EQ(map.BitmapPages().size(), 1u);
  const PageHandle bitmap = pager_->Read(map.BitmapPages()[0]);
  EXPECT_EQ(bitmap->U32(0), 0x0105u);
  EXPECT_FALSE(PageAllocator(*pager_).IsFree(map.BitmapPages()[0]));
  EXPECT_EQ(map.Pages(), (std::vector<PageNumber>{6, 864}));
  map.Remove(6);
  map.Add(7);
  EXPECT_EQ(map.Pages(), (std::vector<PageNumber>{7, 864}));
  EXPECT_EQ(map.Next(8), 864u);
  EXPECT_FALSE(map.Contains(40000));
}

TEST_F(UsageMapTest, AFullUsageMapPageLeavesOnlyTheReferences) {
  GrowTo(850);
  PageAllocator allocator(*pager_);
  for (int i = 0; i < 56; ++i) EXPECT_EQ(allocator.AddUsageMap(row_.page).page, row_.page);
  EXPECT_NE(allocator.AddUsageMap(row_.page).page, row_.page);
  // 35 bytes are left on the page.
  UsageMap map(*pager_, row_);
  map.Add(6);
  map.Add(690);
  EXPECT_EQ(Kind(row_), usage::kKindInline);
  EXPECT_EQ(Extent(row_).second, 93u);
  map.Add(800);
  EXPECT_EQ(Kind(row_), usage::kKindReference);
  EXPECT_EQ(map.Pages(), (std::vector<PageNumber>{6, 690, 800}));
}

TEST_F(UsageMapTest, AReferenceMapHasABitmapPageForEachStretchThatHasMembers) {
  GrowTo(70000);
  UsageMap map(*pager_, row_);
  map.Add(10);
  map.Add(69000);
  EXPECT_EQ(map.BitmapPages().size(), 2u);
  EXPECT_EQ(map.Pages(), (std::vector<PageNumber>{10, 69000}));
  EXPECT_EQ(map.Next(11), 69000u);
  map.Add(32735);
  map.Add(32736);
  EXPECT_EQ(map.BitmapPages().size(), 3u);
  EXPECT_EQ(map.Pages(), (std::vector<PageNumber>{10, 32735, 32736, 69000}));
  const PageHandle second = pager_->Read(map.BitmapPages()[1]);
  EXPECT_EQ(second->U8(usage::kBitmapOffset), 1);
}

TEST_F(UsageMapTest, PagesPastTwoGigabytesAreRefused) {
  EXPECT_THROW(UsageMap(*pager_, row_).Add(524288), Error);
}

TEST_F(UsageMapTest, AgreesWithASetOverALongHistory) {
  GrowTo(3300);
  UsageMap map(*pager_, row_);
  std::set<PageNumber> model;
  test::Random random(5);
  for (int step = 0; step < 4000; ++step) {
    // The stretch in use wanders and widens.
    const PageNumber page = random.Below(200U + static_cast<PageNumber>(step) / 2) + static_cast<PageNumber>(step) / 4;
    if (random.Below(3) == 0) {
      map.Remove(page);
      model.erase(page);
    } else {
      map.Add(page);
      model.insert(page);
    }
    ASSERT_EQ(map.Contains(page), model.contains(page));
    const auto next = model.lower_bound(page / 2);
    ASSERT_EQ(map.Next(page / 2), next == model.end() ? std::nullopt : std::optional(*next));
    if (step % 100 == 0) {
      ASSERT_EQ(map.Pages(), std::vector<PageNumber>(model.begin(), model.end()));
      ExpectFreeBytesExact(row_.page);
    }
  }
}

TEST_F(UsageMapTest, DamageIsNamed) {
  UsageMap map(*pager_, row_);
  map.Add(5);
  const std::size_t at = Extent(row_).first;
  Page& page = pager_->Write(row_.page);
  const std::string where = "row 0 of page " + std::to_string(row_.page);

  page.SetU8(at, 7);
  EXPECT_NE(
      FailureOf([&] { static_cast<void>(map.Pages()); }).find("the usage map in " + where + " has the unknown kind 7"),
      std::string::npos);
  page.SetU8(at, usage::kKindReference);
  page.SetU32(at + 1, 3);
  EXPECT_NE(
      FailureOf([&] { static_cast<void>(map.Pages()); }).find(where + " refers to page 3, which is no bitmap page"),
      std::string::npos);
  page.SetU32(at + 1, 999999);
  EXPECT_NE(FailureOf([&] { static_cast<void>(map.Contains(1)); }), "");
  page.SetU16(data::kRowDirectoryOffset, 2);
  EXPECT_NE(FailureOf([&] { static_cast<void>(map.Pages()); }).find(where + " lies at bytes 2 to 4096"),
            std::string::npos);
  page.SetU16(data::kRowDirectoryOffset, 4094);
  EXPECT_NE(FailureOf([&] { static_cast<void>(map.Pages()); }).find("too short"), std::string::npos);
  page.SetU16(data::kRowDirectoryOffset, 0x1FFF);
  EXPECT_NE(FailureOf([&] { map.Add(6); }), "");
  page.SetU16(data::kRowCountOffset, 0);
  EXPECT_NE(FailureOf([&] { map.Add(6); }).find(where + " is not there"), std::string::npos);
  page.SetU16(data::kRowCountOffset, 0xFFFF);
  EXPECT_NE(FailureOf([&] { PageAllocator(*pager_).RemoveUsageMap(row_); }), "");
  page.SetU8(0, 2);
  EXPECT_NE(FailureOf([&] { static_cast<void>(map.Next(0)); }).find("the page has type 2"), std::string::npos);
}

TEST_F(UsageMapTest, AnyBytesOfAMapPageAreReadAndChangedWithoutHarm) {
  GrowTo(600);
  UsageMap map(*pager_, row_);
  for (PageNumber page = 5; page < 500; page += 3) map.Add(page);
  PageAllocator allocator(*pager_);
  for (int i = 0; i < 5; ++i) static_cast<void>(allocator.AddUsageMap(row_.page));
  Page good(row_.page);
  good.CopyFrom(*pager_->Read(row_.page));
  test::Random random(9);
  for (int round = 0; round < 3000; ++round) {
    Page& page = pager_->Write(row_.page);
    page.CopyFrom(good);
    for (int i = 0; i < 3; ++i) {
      const bool inHeader = random.Below(2) == 0;
      const std::size_t place = inHeader ? random.Below(32) : Extent({row_.page, 0}).first + random.Below(8);
      page.SetU8(std::min(place, kPageSize - 1), random.Byte());
    }
    for (std::uint8_t row = 0; row < 6; ++row) {
      UsageMap damaged(*pager_, {row_.page, row});
      static_cast<void>(FailureOf([&] { static_cast<void>(damaged.Pages()); }));
      static_cast<void>(FailureOf([&] { damaged.Add(random.Below(2000)); }));
      static_cast<void>(FailureOf([&] { damaged.Remove(random.Below(2000)); }));
    }
    static_cast<void>(FailureOf([&] { static_cast<void>(allocator.AddUsageMap(row_.page)); }));
    static_cast<void>(FailureOf([&] { allocator.RemoveUsageMap({row_.page, 0}); }));
  }
}

}  // namespace
}  // namespace tavi::access
