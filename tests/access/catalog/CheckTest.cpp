#include "access/catalog/Check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "access/catalog/Compact.h"
#include "access/catalog/support/TestFile.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/file/UsageMap.h"

namespace tavi::access::test {
namespace {

/// A sound file with rows, a moved row, long values of every form and two indexes; each test hurts it in one place.
class CheckTest : public testing::Test {
 protected:
  CheckTest() {
    file_.Write([](Database& database) {
      database.CreateTable(MakeMembers(), kNow);
      for (int i = 0; i < 100; ++i) {
        Insert(
            database, "Members",
            {{"Name", "member " + std::to_string(i)}, {"Notes", std::string(static_cast<std::size_t>(i) * 60, 'x')}});
      }
      const RowPointer first = AllPlaces(database, "Members").at(0);
      Update(database, "Members", first, {{"Name", "a name that is so much longer that the row moves"}});
    });
    const ReadStatement statement(file_.Get().GetPager());
    definition_ = file_.Get().OpenTable("Members")->Definition();
    place_ = AllPlaces(file_.Get(), "Members").at(5);
  }

  /// Hurts the file and gives what the check finds.
  std::string Findings(const std::function<void(Database&)>& hurt) {
    file_.ExpectSound();
    file_.Write(hurt);
    file_.Reopen();
    std::string all;
    for (const std::string& finding : CheckDatabase(file_.Get(), CheckKind::Strict)) all += finding + "\n";
    return all;
  }
  /// Results, whose players are members.
  void RelateResults() {
    file_.Write([](Database& database) {
      TableDesign design;
      design.name = "Results";
      design.columns = {MakeColumn("Player", ColumnType::Long)};
      database.CreateTable(design, kNow);
      Relationship relationship{"MembersResults", "Members", {"ID"}, "Results", {"Player"}, true, false, false};
      database.CreateRelationship(relationship, kNow);
    });
  }
  Page& WriteRowPage(Database& database) { return database.GetPager().Write(place_.page); }
  std::size_t RowOffset(Database& database) {
    return database.GetPager().Read(place_.page)->U16(format::data::kRowDirectoryOffset + place_.row * 2U) &
           format::data::kRowOffsetMask;
  }

  TestFile file_;
  TableDefinition definition_;
  RowPointer place_;
};

#define EXPECT_FINDING(findings, part) EXPECT_NE((findings).find(part), std::string::npos) << (findings)

TEST_F(CheckTest, FindsNothingInASoundFile) {
  file_.ExpectSound();
}

TEST_F(CheckTest, FindsAnOwnedPageThatIsMarkedFree) {
  const std::string findings = Findings([&](Database& database) {
    UsageMap(database.GetPager(), {format::kGlobalMapPage, format::kGlobalFreeMapRow}).Add(place_.page);
  });
  EXPECT_FINDING(findings, "Page " + std::to_string(place_.page) + " of the rows of table 'Members' is marked free.");
}

TEST_F(CheckTest, FindsAPageOfTwoOwners) {
  const std::string findings = Findings([&](Database& database) {
    UsageMap(database.GetPager(), definition_.longValueMaps.at(0).ownedPages).Add(place_.page);
  });
  EXPECT_FINDING(findings, "belongs to");
}

TEST_F(CheckTest, FindsAWrongCountOfFreeBytes) {
  const std::string findings =
      Findings([&](Database& database) { WriteRowPage(database).SetU16(format::data::kFreeBytesOffset, 5); });
  EXPECT_FINDING(findings, "counts 5 free bytes");
}

TEST_F(CheckTest, FindsAForeignDataPage) {
  const std::string findings =
      Findings([&](Database& database) { WriteRowPage(database).SetU32(format::data::kOwnerOffset, 2); });
  EXPECT_FINDING(findings, "names the owner 2");
}

TEST_F(CheckTest, FindsARowThatLiesNowhere) {
  const std::string findings = Findings([&](Database& database) {
    WriteRowPage(database).SetU16(format::data::kRowDirectoryOffset + place_.row * 2U, 3);
  });
  EXPECT_FINDING(findings, "begins at byte 3");
}

TEST_F(CheckTest, FindsARowThatIsMissingFromItsIndexes) {
  const std::string findings = Findings([&](Database& database) {
    const auto table = database.OpenTable("Members");
    const RowValues row = table->Read(place_);
    EXPECT_TRUE(table->Tree(0).Remove({table->Encoder(0).RowKey(row), place_}));
  });
  EXPECT_FINDING(findings, "is not in the index 'PrimaryKey' of table 'Members' under its key");
}

TEST_F(CheckTest, FindsAnEntryWithoutARow) {
  const std::string findings = Findings([&](Database& database) {
    const auto table = database.OpenTable("Members");
    table->Tree(1).Insert({table->Encoder(1).RowKey({9, "nobody", Null{}, Null{}}), {place_.page, 200}});
  });
  EXPECT_FINDING(findings, "has an entry for the row 200");
}

TEST_F(CheckTest, FindsADoubleKey) {
  const std::string findings = Findings([&](Database& database) {
    TableRows rows(database.GetPager(), definition_);
    const RowPointer row = rows.Insert({1, "member x", Null{}, Null{}});
    const auto table = database.OpenTable("Members");
    for (std::size_t i = 0; i < 2; ++i) table->Tree(i).Insert({table->Encoder(i).RowKey(table->Read(row)), row});
  });
  EXPECT_FINDING(findings, "have the same key in the unique index 'PrimaryKey'");
}

TEST_F(CheckTest, FindsAWrongRowCount) {
  const std::string findings =
      Findings([&](Database& database) { SetRowCount(database.GetPager(), definition_, 1234); });
  EXPECT_FINDING(findings, "says 1234 rows; there are 100");
}

TEST_F(CheckTest, FindsALongValueThatNobodyUses) {
  const std::string findings = Findings([&](Database& database) {
    // The null mask is the row's last byte; without the bit of Notes the row has no memo any more.
    const std::vector<RowPointer> places = AllPlaces(database, "Members");
    const RowPointer last = places.back();
    Page& page = database.GetPager().Write(last.page);
    const std::size_t end = last.row == 0 ? kPageSize
                                          : page.U16(format::data::kRowDirectoryOffset + (last.row - 1) * 2U) &
                                                format::data::kRowOffsetMask;
    page.SetU8(end - 1, static_cast<std::uint8_t>(page.U8(end - 1) & ~0x08U));
  });
  EXPECT_FINDING(findings, "is used by no row");
}

TEST_F(CheckTest, FindsAMovedRowWithoutItsBytes) {
  const std::string findings = Findings([&](Database& database) {
    Page& page = WriteRowPage(database);
    const std::size_t entry = format::data::kRowDirectoryOffset + place_.row * 2U;
    page.SetU16(entry, page.U16(entry) | format::data::kRowMoved);
  });
  EXPECT_FINDING(findings, "which is no moved row of the table");
}

TEST_F(CheckTest, FindsAColumnWithATakenNumber) {
  const std::string findings = Findings([&](Database& database) {
    TableDefinition hurt = definition_;
    hurt.columns[2].id = hurt.columns[0].id;
    WriteTableDefinition(database.GetPager(), hurt, true);
  });
  EXPECT_FINDING(findings, "which is taken or not below");
}

TEST_F(CheckTest, FindsColumnsThatOverlap) {
  const std::string findings = Findings([&](Database& database) {
    TableDefinition hurt = definition_;
    hurt.columns[2].fixedOffset = 2;
    WriteTableDefinition(database.GetPager(), hurt, true);
  });
  EXPECT_FINDING(findings, "overlaps the one before");
}

TEST_F(CheckTest, FindsALeakOnlyWhenStrict) {
  file_.Write([](Database& database) { static_cast<void>(PageAllocator(database.GetPager()).Allocate()); });
  EXPECT_EQ(CheckDatabase(file_.Get()), std::vector<std::string>());
  const std::vector<std::string> strict = CheckDatabase(file_.Get(), CheckKind::Strict);
  ASSERT_EQ(strict.size(), 1U);
  EXPECT_FINDING(strict[0], "is neither free nor owned by anything");
}

TEST_F(CheckTest, FindsAnAutomaticNumberAboveTheCounter) {
  file_.Write([&](Database& database) { SetLastAutoNumber(database.GetPager(), definition_, 99); });
  const std::vector<std::string> strict = CheckDatabase(file_.Get(), CheckKind::Strict);
  ASSERT_EQ(strict.size(), 1U);
  EXPECT_FINDING(strict[0], "The automatic number 100");
}

// Sound files of other programs were called damaged for the two things that follow.
TEST_F(CheckTest, TakesIndexesInAnyOrderOfNamesAndRemarksOnItWhenStrict) {
  file_.Write([&](Database& database) {
    TableDefinition other = definition_;
    std::ranges::reverse(other.logicalIndexes);
    WriteTableDefinition(database.GetPager(), other, true);
  });
  file_.Reopen();
  EXPECT_EQ(CheckDatabase(file_.Get()), std::vector<std::string>());
  const CheckResult strict = CheckFile(file_.Get(), CheckKind::Strict);
  EXPECT_TRUE(strict.findings.empty());
  ASSERT_EQ(strict.remarks.size(), 1U);
  EXPECT_FINDING(strict.remarks[0].text, "of table 'Members' is not listed in the order of names.");
  file_.Close();
  CompactFile(NativeFileSystem(), file_.Path());
  file_.Reopen();
  file_.ExpectSound();
}

TEST_F(CheckTest, TakesPartsOfLongValuesOnOfferedPagesAndRemarksOnThemWhenStrict) {
  file_.Write([&](Database& database) {
    const LongValueMaps& maps = definition_.longValueMaps.at(0);
    for (const PageNumber page : UsageMap(database.GetPager(), maps.ownedPages).Pages())
      UsageMap(database.GetPager(), maps.freeSpacePages).Add(page);
  });
  EXPECT_EQ(CheckDatabase(file_.Get()), std::vector<std::string>());
  const CheckResult strict = CheckFile(file_.Get(), CheckKind::Strict);
  EXPECT_TRUE(strict.findings.empty());
  ASSERT_FALSE(strict.remarks.empty());
  EXPECT_FINDING(strict.remarks[0].text, "which is offered for other values");
  file_.Close();
  CompactFile(NativeFileSystem(), file_.Path());
  file_.Reopen();
  file_.ExpectSound();
}

TEST_F(CheckTest, RemarksOnPagesThatAreOfferedToAColumnThatDoesNotOwnThem) {
  TableDesign design;
  design.name = "Letters";
  design.columns = {MakeColumn("Text", ColumnType::Memo)};
  file_.Write([&](Database& database) {
    database.CreateTable(design, kNow);
    Insert(database, "Letters", {{"Text", std::string(500, 'y')}});
    const LongValueMaps& others = database.OpenTable("Letters")->Definition().longValueMaps.at(0);
    UsageMap offered(database.GetPager(), others.freeSpacePages);
    for (const PageNumber page : offered.Pages()) offered.Remove(page);
    for (const PageNumber page : UsageMap(database.GetPager(), definition_.longValueMaps.at(0).freeSpacePages).Pages())
      offered.Add(page);
  });
  EXPECT_EQ(CheckDatabase(file_.Get()), std::vector<std::string>());
  const CheckResult strict = CheckFile(file_.Get(), CheckKind::Strict);
  EXPECT_TRUE(strict.findings.empty());
  ASSERT_FALSE(strict.remarks.empty());
  EXPECT_FINDING(strict.remarks[0].text, "but not its own");

  // The value would have gone with the other table's pages.
  file_.Write([&](Database& database) { Insert(database, "Letters", {{"Text", std::string(500, 'z')}}); });
  file_.ExpectSound();
  file_.Write([](Database& database) { database.DropTable("Members"); });
  EXPECT_EQ(ColumnOf(file_.Get(), "Letters", "Text"),
            (std::vector<Value>{std::string(500, 'y'), std::string(500, 'z')}));
}

TEST_F(CheckTest, FindsAMissingRelatedRow) {
  RelateResults();
  const std::string findings = Findings([](Database& database) {
    const auto table = database.OpenTable("Results");
    TableRows rows(database.GetPager(), table->Definition());
    const RowPointer row = rows.Insert({4711});
    table->Tree(0).Insert({table->Encoder(0).RowKey({4711}), row});
  });
  EXPECT_FINDING(findings, "has no row in table 'Members'");
}

TEST_F(CheckTest, FindsSidesOfARelationshipThatDoNotFit) {
  RelateResults();
  using Side = LogicalIndexDefinition::Side;
  const std::vector<std::function<void(LogicalIndexDefinition&)>> changes = {
      [](LogicalIndexDefinition& side) { side.cascadeUpdates = 1; },
      [](LogicalIndexDefinition& side) { side.cascadeDeletes = 1; },
      [](LogicalIndexDefinition& side) { side.side = Side::Primary; },
      [](LogicalIndexDefinition& side) { ++side.partnerNumber; },
  };
  for (const auto& change : changes) {
    TableDefinition sound;
    const std::string findings = Findings([&](Database& database) {
      sound = database.OpenTable("Results")->Definition();
      TableDefinition hurt = sound;
      for (LogicalIndexDefinition& side : hurt.logicalIndexes)
        if (side.side == Side::Foreign) change(side);
      WriteTableDefinition(database.GetPager(), hurt, true);
    });
    EXPECT_FINDING(findings, "is not the same on its other side, table 'Members'");
    file_.Write([&](Database& database) { WriteTableDefinition(database.GetPager(), sound, true); });
    file_.Reopen();
  }
}

TEST(CheckOfDamage, SurvivesEveryByteOfTheDefinitionBeingWrong) {
  TestFile file;
  file.Write([](Database& database) {
    database.CreateTable(MakeMembers(), kNow);
    for (int i = 0; i < 3; ++i) Insert(database, "Members", {{"Name", "member"}, {"Notes", std::string(80, 'x')}});
  });
  PageNumber number = 0;
  std::size_t length = 1;
  std::size_t found = 0;
  for (std::size_t offset = 0; offset < length; ++offset) {
    // Rolled back at the end of each round, so that the next one begins with the sound file.
    const WriteStatement statement(file.Get().GetPager());
    if (number == 0) number = file.Get().OpenTable("Members")->Definition().page;
    Page& page = file.Get().GetPager().Write(number);
    length = page.U32(format::table::kLengthOffset);
    page.SetU8(offset, static_cast<std::uint8_t>(~page.U8(offset)));
    if (!CheckDatabase(file.Get()).empty()) ++found;
  }
  EXPECT_GT(found, length / 3);
  file.ExpectSound();
}

}  // namespace
}  // namespace tavi::access::test
