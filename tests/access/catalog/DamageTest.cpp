// One bit or one field of a sound file is made wrong, in twelve ways and in many places: the check finds each.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "access/catalog/support/TestFile.h"
#include "access/file/Format.h"
#include "access/file/UsageMap.h"
#include "access/file/support/LongRun.h"
#include "access/file/support/Random.h"
#include "access/table/TableRows.h"

namespace tavi::access::test {
namespace {

constexpr std::size_t kRounds = 40;

/// A table with rows on many pages, moved and deleted rows, memos of every form, and indexes of two levels.
void FillFile(Database& database) {
  TableDesign design = MakeMembers();
  design.indexes.push_back(MakeIndex("ByDate", {"Joined", "Name"}));
  database.CreateTable(design, kNow);
  for (int i = 0; i < 700; ++i) {
    Insert(database, "Members",
           {{"Name", "member number " + std::to_string(i * 7919 % 700)},
            {"Joined", Date{40000.0 + i % 90}},
            {"Notes", i % 3 == 0 ? Value(std::string(static_cast<std::size_t>(i) * 9, 'x')) : Value(Null{})}});
  }
  const std::vector<RowPointer> places = AllPlaces(database, "Members");
  for (std::size_t i = 0; i < places.size(); i += 50) {
    Update(database, "Members", places[i], {{"Name", std::string(49, 'y') + std::to_string(i % 10)}});
    database.OpenTable("Members")->Delete(places[i + 1]);
  }
}

class DamageTest : public testing::Test {
 protected:
  DamageTest() {
    file_.Write(FillFile);
    file_.ExpectSound();
    const ReadStatement statement(GetPager());
    definition_ = file_.Get().OpenTable("Members")->Definition();
    data_ = UsageMap(GetPager(), definition_.ownedPages).Pages();
    for (const RealIndexDefinition& index : definition_.realIndexes) {
      for (const PageNumber page : UsageMap(GetPager(), index.ownedPages).Pages())
        (IsLeaf(page) ? leaves_ : nodes_).push_back(page);
    }
  }

  Pager& GetPager() { return file_.Get().GetPager(); }
  bool IsLeaf(PageNumber page) {
    return GetPager().Read(page)->U8(format::kPageTypeOffset) == format::page_type::kIndexLeaf;
  }
  PageNumber AnyOf(const std::vector<PageNumber>& pages) { return pages.at(random_.Below(pages.size())); }
  std::size_t AnyOffset(const std::vector<std::size_t>& offsets) { return offsets.at(random_.Below(offsets.size())); }

  /// The ends of the entries of an index page, from the first to the last.
  static std::vector<std::size_t> EntryEnds(const Page& page) {
    std::vector<std::size_t> ends;
    for (std::size_t bit = 0; bit < format::index::kMaskSize * 8; ++bit) {
      const unsigned mask = page.U8(format::index::kMaskOffset + bit / 8);
      if ((mask >> (bit % 8) & 1U) != 0) ends.push_back(bit);
    }
    return ends;
  }
  void FlipBit(PageNumber number, std::size_t offset) {
    Page& page = GetPager().Write(number);
    page.SetU8(offset, static_cast<std::uint8_t>(page.U8(offset) ^ (1U << random_.Below(8))));
    where_ = "page " + std::to_string(number) + ", byte " + std::to_string(offset);
  }

  /// Damages the file again and again, each time from the sound state, and expects that the check notices.
  void ExpectFound(const std::function<void()>& damage) {
    for (std::size_t round = 0; round < Lengthened(kRounds); ++round) {
      const WriteStatement statement(GetPager());
      damage();
      EXPECT_FALSE(CheckDatabase(file_.Get(), CheckKind::Strict).empty()) << "not found: " << where_;
    }
    file_.ExpectSound();
  }

  TestFile file_;
  TableDefinition definition_;
  std::vector<PageNumber> data_;
  std::vector<PageNumber> leaves_;
  std::vector<PageNumber> nodes_;
  Random random_{20};
  std::string where_;
};

TEST_F(DamageTest, HasPagesOfEveryKindToDamage) {
  EXPECT_GT(data_.size(), 5U);
  EXPECT_GT(leaves_.size(), 10U);
  EXPECT_EQ(nodes_.size(), 3U);
}

TEST_F(DamageTest, ABitOfALeafsEntries) {
  ExpectFound([&] {
    const PageNumber leaf = AnyOf(leaves_);
    const std::size_t end = EntryEnds(*GetPager().Read(leaf)).back();
    FlipBit(leaf, format::index::kEntriesOffset + random_.Below(end));
  });
}

TEST_F(DamageTest, ABitOfALeafsHeader) {
  ExpectFound([&] { FlipBit(AnyOf(leaves_), AnyOffset({0, 2, 4, 5, 12, 13, 16, 17, 24})); });
}

TEST_F(DamageTest, ABitOfALeafsEntryMask) {
  ExpectFound([&] {
    const PageNumber leaf = AnyOf(leaves_);
    const std::size_t end = EntryEnds(*GetPager().Read(leaf)).back();
    FlipBit(leaf, format::index::kMaskOffset + random_.Below(1 + end / 8));
  });
}

TEST_F(DamageTest, ALeafsLastEntryRemoved) {
  ExpectFound([&] {
    const PageNumber leaf = AnyOf(leaves_);
    Page& page = GetPager().Write(leaf);
    const std::vector<std::size_t> ends = EntryEnds(page);
    const std::size_t mask = format::index::kMaskOffset + ends.back() / 8;
    page.SetU8(mask, static_cast<std::uint8_t>(page.U8(mask) & ~(1U << ends.back() % 8)));
    const std::size_t before = ends.size() > 1 ? ends[ends.size() - 2] : 0;
    page.SetU16(format::index::kFreeBytesOffset, static_cast<std::uint16_t>(format::index::kEntriesSize - before));
    where_ = "page " + std::to_string(leaf);
  });
}

TEST_F(DamageTest, ABitOfANodesEntries) {
  ExpectFound([&] {
    const PageNumber node = AnyOf(nodes_);
    const std::size_t end = EntryEnds(*GetPager().Read(node)).back();
    FlipBit(node, format::index::kEntriesOffset + random_.Below(end));
  });
}

TEST_F(DamageTest, ABitOfADataPagesHeader) {
  ExpectFound([&] { FlipBit(AnyOf(data_), AnyOffset({0, 2, 3, 4, 5, 12})); });
}

TEST_F(DamageTest, ABitOfARowsPlace) {
  ExpectFound([&] {
    const PageNumber page = AnyOf(data_);
    const std::size_t rows = GetPager().Read(page)->U16(format::data::kRowCountOffset);
    FlipBit(page, format::data::kRowDirectoryOffset + random_.Below(rows * format::data::kRowEntrySize));
  });
}

TEST_F(DamageTest, APageMissingFromTheTablesMap) {
  ExpectFound([&] {
    const PageNumber page = AnyOf(data_);
    UsageMap(GetPager(), definition_.ownedPages).Remove(page);
    where_ = "page " + std::to_string(page);
  });
}

TEST_F(DamageTest, AForeignPageInTheTablesMap) {
  ExpectFound([&] {
    const PageNumber page = AnyOf(leaves_);
    UsageMap(GetPager(), definition_.ownedPages).Add(page);
    where_ = "page " + std::to_string(page);
  });
}

TEST_F(DamageTest, APageMissingFromAnIndexsMap) {
  ExpectFound([&] {
    const RealIndexDefinition& index = definition_.realIndexes.at(random_.Below(definition_.realIndexes.size()));
    const PageNumber page = AnyOf(UsageMap(GetPager(), index.ownedPages).Pages());
    UsageMap(GetPager(), index.ownedPages).Remove(page);
    where_ = "page " + std::to_string(page);
  });
}

TEST_F(DamageTest, APageInUseThatIsMarkedFree) {
  ExpectFound([&] {
    const PageNumber page = AnyOf(random_.Below(2) == 0 ? data_ : leaves_);
    UsageMap(GetPager(), {format::kGlobalMapPage, format::kGlobalFreeMapRow}).Add(page);
    where_ = "page " + std::to_string(page);
  });
}

TEST_F(DamageTest, AWrongRowCount) {
  ExpectFound([&] { FlipBit(definition_.page, format::table::kRowCountOffset); });
}

TEST_F(DamageTest, ABitOfAUsageMapsPage) {
  ExpectFound([&] {
    const RowPointer map = random_.Below(2) == 0 ? definition_.ownedPages : definition_.realIndexes.at(0).ownedPages;
    const std::size_t place = format::data::kRowDirectoryOffset + map.row * format::data::kRowEntrySize;
    FlipBit(map.page, AnyOffset({0, 2, 3, 4, 5, 12, place, place + 1}));
  });
}

TEST_F(DamageTest, FindingsSayWhatTheyAreAbout) {
  const WriteStatement statement(GetPager());
  FlipBit(definition_.page, format::table::kRowCountOffset);
  const CheckResult result = CheckFile(file_.Get(), CheckKind::Ordinary);
  ASSERT_EQ(result.findings.size(), 1U);
  EXPECT_EQ(result.findings[0].part, CheckPart::Counter);
  EXPECT_EQ(result.findings[0].table, "Members");
  EXPECT_FALSE(result.isCutShort);
}

TEST_F(DamageTest, TheCheckTellsHowFarItHasCome) {
  std::size_t last = 0;
  std::size_t total = 0;
  const auto progress = [&](std::size_t done, std::size_t all, const std::string&) {
    EXPECT_GE(done, last);
    EXPECT_LE(done, all);
    last = done;
    total = all;
  };
  const CheckResult result = CheckFile(file_.Get(), CheckKind::Ordinary, progress);
  EXPECT_EQ(total, result.pages);
  EXPECT_GT(last, data_.size() + leaves_.size());
  EXPECT_EQ(result.tables, 5U);
  EXPECT_GT(result.rows, 686U);
}

/// Has the names of some tables lead to the definition of the first one.
void ShareDefinition(Database& database, int tables) {
  const auto objects = database.OpenTable("MSysObjects");
  const std::size_t id = *objects->FindColumn("Id");
  const std::size_t name = *objects->FindColumn("Name");
  const Value first = static_cast<std::int32_t>(database.OpenTable("Copy 0")->Definition().page);
  TableRows rows(database.GetPager(), objects->Definition());
  for (const RowPointer place : AllPlaces(database, "MSysObjects")) {
    RowValues values = rows.Read(place);
    for (int table = 1; table < tables; ++table) {
      if (values[name] != Value("Copy " + std::to_string(table))) continue;
      values[id] = first;
      rows.Update(place, values);
    }
  }
}

TEST(SharedDefinition, OfMoreThanAFewNamesIsReadUnderOneOfThemOnly) {
  for (const int shared : {3, 12}) {
    TestFile file;
    file.Write([](Database& database) {
      for (int table = 0; table < 12; ++table) {
        TableDesign design = MakeMembers();
        design.name = "Copy " + std::to_string(table);
        database.CreateTable(design, kNow);
      }
    });
    file.Write([&](Database& database) { ShareDefinition(database, shared); });
    file.Reopen();
    const ReadStatement statement(file.Get().GetPager());
    EXPECT_NO_THROW(static_cast<void>(file.Get().OpenTable("Copy 0")));
    if (shared == 3) {
      EXPECT_NO_THROW(static_cast<void>(file.Get().OpenTable("Copy 2")));
    } else {
      EXPECT_THROW(static_cast<void>(file.Get().OpenTable("Copy 2")), Error);
    }
  }
}

}  // namespace
}  // namespace tavi::access::test
