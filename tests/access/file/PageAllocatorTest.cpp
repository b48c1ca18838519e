#include "access/file/PageAllocator.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "access/file/Format.h"
#include "access/file/UsageMap.h"
#include "access/file/support/ClubPaths.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/Random.h"
#include "access/file/support/SmallDatabase.h"
#include "access/file/support/TemporaryFolder.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

namespace data = format::data;
namespace usage = format::usage;

using test::kPath;
using test::MakeSmallDatabase;
using test::MemoryFileSystem;

constexpr RowPointer kGlobal = {1, 0};

class PageAllocatorTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Pager::Create(*memory_, kPath, MakeSmallDatabase(8));
    pager_ = Pager::Open(memory_, kPath, {});
    pager_->BeginWrite();
  }

  std::size_t GlobalStart() { return pager_->Read(1)->U16(data::kRowDirectoryOffset) & data::kRowOffsetMask; }
  std::size_t GlobalLength() { return kPageSize - GlobalStart(); }
  std::uint8_t GlobalKind() { return pager_->Read(1)->U8(GlobalStart()); }
  bool GlobalBit(PageNumber page) { return UsageMap(*pager_, kGlobal).Contains(page); }
  void GrowTo(PageNumber count) {
    PageAllocator allocator(*pager_);
    while (pager_->PageCount() < count) static_cast<void>(allocator.Allocate());
  }

  std::shared_ptr<MemoryFileSystem> memory_ = std::make_shared<MemoryFileSystem>();
  std::unique_ptr<Pager> pager_;
};

TEST_F(PageAllocatorTest, TheFileGrowsWhenNothingIsFree) {
  PageAllocator allocator(*pager_);
  Page& page = allocator.Allocate();
  EXPECT_EQ(page.Number(), 8u);
  EXPECT_EQ(pager_->PageCount(), 9u);
  EXPECT_FALSE(GlobalBit(8));
  EXPECT_TRUE(GlobalBit(9));
  EXPECT_EQ(allocator.Allocate().Number(), 9u);
}

TEST_F(PageAllocatorTest, FreePagesAreUsedAgainLowestFirstAndZeroed) {
  PageAllocator allocator(*pager_);
  for (int i = 0; i < 10; ++i) allocator.Allocate().Fill(0, kPageSize, 0xCC);
  allocator.Free(15);
  allocator.Free(10);
  allocator.Free(10);
  EXPECT_TRUE(allocator.IsFree(10));
  EXPECT_FALSE(allocator.IsFree(11));
  EXPECT_EQ(pager_->Read(10)->U8(0), 0xCC);
  const Page& again = allocator.Allocate();
  EXPECT_EQ(again.Number(), 10u);
  for (std::size_t i = 0; i < kPageSize; ++i) ASSERT_EQ(again.U8(i), 0);
  EXPECT_FALSE(allocator.IsFree(10));
  EXPECT_EQ(allocator.Allocate().Number(), 15u);
  EXPECT_EQ(allocator.Allocate().Number(), 18u);
}

TEST_F(PageAllocatorTest, PagesPastTheEndAreNotFree) {
  EXPECT_TRUE(GlobalBit(100));
  EXPECT_FALSE(PageAllocator(*pager_).IsFree(100));
}

TEST_F(PageAllocatorTest, FixedPagesAndPagesPastTheEndCannotBeFreed) {
  PageAllocator allocator(*pager_);
  for (const PageNumber page : {0U, 1U, 2U, 5U, 8U, 0xFFFFFFFFU}) EXPECT_THROW(allocator.Free(page), Error) << page;
}

TEST_F(PageAllocatorTest, AMapThatCallsFixedPagesFreeIsNotBelieved) {
  Page& map = pager_->Write(1);
  map.SetU8(GlobalStart() + usage::kInlineBitmapOffset, 0xFF);
  EXPECT_EQ(PageAllocator(*pager_).Allocate().Number(), 6u);
}

TEST_F(PageAllocatorTest, ClearedBitsPastTheEndDoNoHarm) {
  UsageMap global(*pager_, kGlobal);
  for (PageNumber page = 8; page < 40; ++page) global.Remove(page);
  PageAllocator allocator(*pager_);
  EXPECT_EQ(allocator.Allocate().Number(), 8u);
  EXPECT_EQ(allocator.Allocate().Number(), 9u);
}

TEST_F(PageAllocatorTest, TheGlobalMapIsMadeLongerPast512Pages) {
  GrowTo(512);
  EXPECT_EQ(GlobalLength(), 69u);
  GrowTo(513);
  EXPECT_EQ(GlobalLength(), 73u);
  EXPECT_FALSE(GlobalBit(512));
  for (PageNumber page = 513; page < 544; ++page) EXPECT_TRUE(GlobalBit(page)) << page;
  EXPECT_EQ(pager_->Read(1)->U16(data::kFreeBytesOffset), 3940 - 4);
  // The empty second map has moved along.
  EXPECT_TRUE(UsageMap(*pager_, {1, 1}).Pages().empty());
  EXPECT_EQ((pager_->Read(1)->U16(data::kRowDirectoryOffset + 2) & data::kRowOffsetMask), GlobalStart() - 69);
  GrowTo(743);
  EXPECT_EQ(GlobalLength(), 101u);
  EXPECT_EQ(pager_->PageCount(), 743u);
}

TEST_F(PageAllocatorTest, AVeryLongGlobalMapBecomesAReferenceMap) {
  GrowTo(864);
  EXPECT_EQ(GlobalLength(), 113u);
  PageAllocator allocator(*pager_);
  allocator.Free(100);
  EXPECT_EQ(allocator.Allocate().Number(), 100u);
  GrowTo(865);
  EXPECT_EQ(GlobalKind(), usage::kKindReference);
  const std::vector<PageNumber> bitmaps = UsageMap(*pager_, kGlobal).BitmapPages();
  ASSERT_EQ(bitmaps, std::vector<PageNumber>{864});
  for (PageNumber page = 0; page < pager_->PageCount(); ++page) ASSERT_FALSE(GlobalBit(page)) << page;
  EXPECT_TRUE(GlobalBit(pager_->PageCount()));
  EXPECT_TRUE(GlobalBit(32735));
  EXPECT_THROW(allocator.Free(864), Error);
  allocator.Free(863);
  EXPECT_EQ(allocator.Allocate().Number(), 863u);
}

TEST_F(PageAllocatorTest, FreePagesStayFreeWhenTheGlobalMapChangesItsForm) {
  GrowTo(864);
  PageAllocator allocator(*pager_);
  std::set<PageNumber> free;
  for (PageNumber page = 20; page < 860; page += 7) {
    allocator.Free(page);
    free.insert(page);
  }
  // Force the conversion while there are free pages, as an insert into another map would.
  pager_->WriteNew(pager_->PageCount());
  allocator.Free(864);
  EXPECT_EQ(GlobalKind(), usage::kKindReference);
  free.insert(864);
  EXPECT_EQ(UsageMap(*pager_, kGlobal).Pages(), std::vector<PageNumber>(free.begin(), free.end()));
}

TEST_F(PageAllocatorTest, PagesThatTheMapDidNotReachCountAsUsed) {
  // A file of 600 pages whose map stops at 512.
  while (pager_->PageCount() < 600) static_cast<void>(pager_->WriteNew(pager_->PageCount()));
  UsageMap global(*pager_, kGlobal);
  for (PageNumber page = 8; page < 512; ++page) global.Remove(page);
  PageAllocator allocator(*pager_);
  EXPECT_EQ(allocator.Allocate().Number(), 600u);
  for (PageNumber page = 512; page <= 600; ++page) EXPECT_FALSE(GlobalBit(page)) << page;
  EXPECT_TRUE(GlobalBit(601));
  allocator.Free(550);
  EXPECT_EQ(allocator.Allocate().Number(), 550u);
}

TEST_F(PageAllocatorTest, TheGlobalMapGetsABitmapPageForEachStretch) {
  GrowTo(66000);
  const std::vector<PageNumber> bitmaps = UsageMap(*pager_, kGlobal).BitmapPages();
  EXPECT_EQ(bitmaps, (std::vector<PageNumber>{864, 32736, 65472}));
  for (const PageNumber page : {32735U, 32736U, 32737U, 65471U, 65472U, 65473U, 65999U}) EXPECT_FALSE(GlobalBit(page));
  EXPECT_TRUE(GlobalBit(66000));
  PageAllocator allocator(*pager_);
  allocator.Free(65471);
  allocator.Free(32737);
  EXPECT_EQ(allocator.Allocate().Number(), 32737u);
  EXPECT_EQ(allocator.Allocate().Number(), 65471u);
}

TEST_F(PageAllocatorTest, ABitmapPageThatIsAddedBelowIsNotCountedAsFreeAbove) {
  GrowTo(33000);
  // A reference map may leave the bitmap page of a stretch out: nothing is free there.
  pager_->Write(1).SetU32(GlobalStart() + usage::kReferencesOffset, 0);
  PageAllocator allocator(*pager_);
  EXPECT_TRUE(GlobalBit(33000));
  allocator.Free(100);
  EXPECT_EQ(UsageMap(*pager_, kGlobal).BitmapPages(), (std::vector<PageNumber>{33000, 32736}));
  EXPECT_FALSE(GlobalBit(33000));
  EXPECT_EQ(allocator.Allocate().Number(), 100u);
  EXPECT_EQ(allocator.Allocate().Number(), 33001u);
}

TEST_F(PageAllocatorTest, NoPageIsEverHandedOutTwice) {
  PageAllocator allocator(*pager_);
  std::set<PageNumber> used;
  test::Random random(3);
  for (int step = 0; step < 5000; ++step) {
    if (random.Below(3) != 0 || used.empty()) {
      ASSERT_TRUE(used.insert(allocator.Allocate().Number()).second);
    } else {
      auto victim = used.lower_bound(random.Below(pager_->PageCount()));
      if (victim == used.end()) victim = used.begin();
      allocator.Free(*victim);
      used.erase(victim);
    }
    ASSERT_EQ(pager_->PageCount(), used.size() + 8 + UsageMap(*pager_, kGlobal).Pages().size() +
                                       UsageMap(*pager_, kGlobal).BitmapPages().size());
  }
  EXPECT_GT(pager_->PageCount(), 900u);
}

TEST_F(PageAllocatorTest, AllocationIsPartOfTheStatement) {
  static_cast<void>(PageAllocator(*pager_).Allocate());
  pager_->Rollback();
  EXPECT_EQ(pager_->PageCount(), 8u);
  const WriteStatement statement(*pager_);
  EXPECT_EQ(PageAllocator(*pager_).Allocate().Number(), 8u);
}

TEST(PageAllocatorLimit, AFileOfTwoGigabytesDoesNotGrow) {
  // The file is sparse: it takes next to no room on the disk.
  const test::TemporaryFolder folder;
  const std::string path = folder.File("huge.mdb");
  Pager::Create(*NativeFileSystem(), path, MakeSmallDatabase(8));
  std::filesystem::resize_file(path, std::uintmax_t{format::kMaximumPageCount} * kPageSize);
  const auto pager = Pager::Open(NativeFileSystem(), path, {});
  pager->BeginWrite();
  EXPECT_EQ(pager->PageCount(), format::kMaximumPageCount);
  EXPECT_EQ(pager->Read(format::kMaximumPageCount - 1)->U8(0), 0);
  PageAllocator allocator(*pager);
  // What the map calls free can still be had.
  EXPECT_EQ(allocator.Allocate().Number(), 8u);
  for (PageNumber page = 9; page < 512; ++page) static_cast<void>(allocator.Allocate());
  try {
    static_cast<void>(allocator.Allocate());
    FAIL();
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    EXPECT_NE(error.Description().find("has reached the 2 GB that an Access database can have"), std::string::npos);
  }
}

TEST_F(PageAllocatorTest, UsageMapRowsFillAPageAndThenANewOne) {
  PageAllocator allocator(*pager_);
  const RowPointer first = allocator.AddUsageMap(0);
  EXPECT_EQ(first, (RowPointer{8, 0}));
  // Data page, free 4082 - 71, owner 0, one row.
  EXPECT_EQ(pager_->Read(8)->U32(0), 0x0FAB0101u);
  EXPECT_EQ(pager_->Read(8)->U32(data::kOwnerOffset), 0u);
  EXPECT_EQ(pager_->Read(8)->U16(data::kRowDirectoryOffset), 0x0FBB);
  for (std::uint8_t row = 1; row < 57; ++row) EXPECT_EQ(allocator.AddUsageMap(8), (RowPointer{8, row}));
  EXPECT_EQ(pager_->Read(8)->U16(data::kFreeBytesOffset), 4082 - 57 * 71);
  EXPECT_EQ(allocator.AddUsageMap(8), (RowPointer{9, 0}));
}

TEST_F(PageAllocatorTest, UsageMapsDoNotGoToPagesOfOtherKinds) {
  PageAllocator allocator(*pager_);
  EXPECT_EQ(allocator.AddUsageMap(1).page, 8u);
  EXPECT_EQ(allocator.AddUsageMap(3).page, 9u);
  EXPECT_EQ(allocator.AddUsageMap(7).page, 10u);
  EXPECT_EQ(allocator.AddUsageMap(4000).page, 11u);
}

TEST_F(PageAllocatorTest, ARemovedMapRowIsUsedAgain) {
  PageAllocator allocator(*pager_);
  const RowPointer first = allocator.AddUsageMap(0);
  const RowPointer second = allocator.AddUsageMap(first.page);
  UsageMap(*pager_, first).Add(5);
  allocator.RemoveUsageMap(first);
  EXPECT_EQ(pager_->Read(8)->U16(data::kRowDirectoryOffset) & data::kRowFlagsMask, data::kRowDeleted);
  EXPECT_EQ(allocator.AddUsageMap(second.page), first);
  EXPECT_TRUE(UsageMap(*pager_, first).Pages().empty());
}

TEST_F(PageAllocatorTest, RemovingAReferenceMapFreesItsBitmapPages) {
  GrowTo(900);
  PageAllocator allocator(*pager_);
  const RowPointer keeper = allocator.AddUsageMap(0);
  const RowPointer row = allocator.AddUsageMap(keeper.page);
  UsageMap map(*pager_, row);
  map.Add(6);
  map.Add(890);
  const std::vector<PageNumber> bitmaps = map.BitmapPages();
  ASSERT_EQ(bitmaps.size(), 1u);
  allocator.RemoveUsageMap(row);
  EXPECT_TRUE(allocator.IsFree(bitmaps[0]));
  EXPECT_FALSE(allocator.IsFree(keeper.page));
}

TEST_F(PageAllocatorTest, AUsageMapPageWithoutRowsIsGivenBack) {
  PageAllocator allocator(*pager_);
  const RowPointer first = allocator.AddUsageMap(0);
  const RowPointer second = allocator.AddUsageMap(first.page);
  allocator.RemoveUsageMap(first);
  EXPECT_FALSE(allocator.IsFree(first.page));
  allocator.RemoveUsageMap(second);
  EXPECT_TRUE(allocator.IsFree(first.page));
  EXPECT_EQ(pager_->Read(first.page)->U8(0), format::page_type::kReleasedData);
  // It is not taken for a usage-map page any more.
  EXPECT_EQ(allocator.AddUsageMap(first.page), (RowPointer{first.page, 0}));
  EXPECT_FALSE(allocator.IsFree(first.page));
}

TEST_F(PageAllocatorTest, ADamagedGlobalMapIsAnErrorNotAnAccident) {
  Page& map = pager_->Write(1);
  Page good(1);
  good.CopyFrom(map);
  test::Random random(8);
  for (int round = 0; round < 3000; ++round) {
    map.CopyFrom(good);
    for (int i = 0; i < 3; ++i) {
      const std::size_t place = random.Below(2) == 0 ? random.Below(20) : kPageSize - 69 + random.Below(10);
      map.SetU8(place, random.Byte());
    }
    PageAllocator allocator(*pager_);
    try {
      EXPECT_GE(allocator.Allocate().Number(), 6u);
      allocator.Free(7);
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    }
  }
}

}  // namespace
}  // namespace tavi::access
