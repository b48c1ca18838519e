// Compacting: what is kept, what is freed, who is refused, and what is left when it is stopped at any instant.
#include <gtest/gtest.h>
#include <algorithm>
#include <filesystem>
#include <set>

#include "SourceDirectory.h"
#include "access/catalog/Compact.h"
#include "access/catalog/NewFile.h"
#include "access/catalog/support/TestFile.h"
#include "access/file/DatabaseHeader.h"
#include "access/file/Format.h"
#include "access/file/support/CrashingFileSystem.h"
#include "access/file/support/FailingFileSystem.h"
#include "access/file/support/MemoryFileSystem.h"
#include "host/dump/DatabaseDump.h"

namespace tavi::access::test {
namespace {

namespace fs = std::filesystem;
using host::DumpDatabase;
using host::TableText;
using Contents = std::map<std::string, std::string>;

constexpr char kPath[] = "club.mdb";
constexpr char kBackup[] = "club.backup-1.mdb";

/// The texts of all tables, the system's included, and the relationships and columns of users' tables without their
/// numbers.
Contents ContentsOf(Database& database) {
  const ReadStatement statement(database.GetPager());
  Contents contents;
  for (const CatalogEntry& entry : database.Tables())
    if (!entry.isLinked) contents[entry.name] = TableText(database, entry.name);
  DumpDatabase(database, [&](const std::string& name, const std::string& text) {
    if (name == "schema.json") contents[name] = text;
  });
  return contents;
}

std::unique_ptr<Database> OpenIn(const std::shared_ptr<FileSystem>& fileSystem, const std::string& path) {
  return std::make_unique<Database>(Pager::Open(fileSystem, path, {}));
}

Contents ContentsOf(const std::shared_ptr<FileSystem>& fileSystem, const std::string& path) {
  return ContentsOf(*OpenIn(fileSystem, path));
}

void Change(const std::shared_ptr<FileSystem>& fileSystem, const std::function<void(Database&)>& changes) {
  const auto database = OpenIn(fileSystem, kPath);
  WriteStatement statement(database->GetPager());
  changes(*database);
  statement.Commit();
}

void FillTables(Database& database) {
  TableDesign members = MakeMembers();
  members.columns[1].required = true;
  members.columns[3].defaultExpression = "\"none\"";
  database.CreateTable(members, kNow);
  TableDesign results;
  results.name = "Results";
  results.columns = {MakeColumn("Player", ColumnType::Long), MakeColumn("Old", ColumnType::Text),
                     MakeColumn("Score", ColumnType::Double), MakeColumn("Older", ColumnType::Long)};
  database.CreateTable(results, kNow);
  for (int i = 0; i < 60; ++i) {
    Insert(database, "Members",
           {{"Name", "member " + std::to_string(i)}, {"Notes", std::string(static_cast<std::size_t>(i) * 90, 'x')}});
    Insert(database, "Results", {{"Player", i + 1}, {"Old", "text"}, {"Score", i * 0.25}, {"Older", i}});
  }
  Relationship relationship{"MembersResults", "Members", {"ID"}, "Results", {"Player"}, true, true, true};
  database.CreateRelationship(relationship, kNow);
  database.DropColumn("Results", "Old");
  database.DropColumn("Results", "Older");
  database.OpenTable("Members")->Delete(AllPlaces(database, "Members").back());
}

std::shared_ptr<MemoryFileSystem> MakeClub() {
  auto memory = std::make_shared<MemoryFileSystem>();
  Database::CreateFile(*memory, kPath, kNow);
  Change(memory, FillTables);
  return memory;
}

void ExpectSound(const std::shared_ptr<FileSystem>& fileSystem, const std::string& path) {
  EXPECT_EQ(CheckDatabase(*OpenIn(fileSystem, path), CheckKind::Strict), std::vector<std::string>());
}

/// The description of the error that compacting raises; fails the test when there is none.
std::string Refusal(const std::shared_ptr<FileSystem>& fileSystem) {
  try {
    CompactFile(fileSystem, kPath);
  } catch (const Error& error) {
    return error.Description();
  }
  ADD_FAILURE() << "the file was compacted";
  return {};
}

TEST(Compact, KeepsAllTablesAndTheOldFile) {
  const auto memory = MakeClub();
  const auto old = memory->Contents(kPath);
  Contents before = ContentsOf(memory, kPath);
  const CompactResult result = CompactFile(memory, kPath);
  EXPECT_EQ(result.backup, kBackup);
  EXPECT_EQ(result.bytesBefore, old.size());
  EXPECT_EQ(result.bytesAfter, memory->Contents(kPath).size());
  EXPECT_EQ(memory->Contents(kBackup), old);
  EXPECT_EQ(memory->Paths(), (std::vector<std::string>{kBackup, kPath}));
  Contents after = ContentsOf(memory, kPath);
  // The columns left have new numbers.
  EXPECT_NE(before["schema.json"].find("\"number\": 2"), std::string::npos);
  before.erase("schema.json");
  after.erase("schema.json");
  EXPECT_EQ(before, after);
  ExpectSound(memory, kPath);
}

TEST(Compact, KeepsRulesAndAutomaticNumbers) {
  const auto memory = MakeClub();
  CompactFile(memory, kPath);
  const auto database = OpenIn(memory, kPath);
  WriteStatement statement(database->GetPager());
  const auto members = database->OpenTable("Members");
  EXPECT_TRUE(members->Columns()[1].required);
  EXPECT_EQ(members->Columns()[3].defaultExpression, "\"none\"");
  Insert(*database, "Members", {{"Name", "new"}});
  // 60 was given and deleted before.
  EXPECT_EQ(ColumnOf(*database, "Members", "ID").back(), Value(std::int32_t{61}));
  EXPECT_THROW(Insert(*database, "Results", {{"Player", 4711}}), Error);
  const std::size_t results = AllRows(*database, "Results").size();
  database->OpenTable("Members")->Delete(AllPlaces(*database, "Members").front());
  EXPECT_EQ(AllRows(*database, "Results").size(), results - 1);
}

TEST(Compact, FreesTheNumbersOfDroppedColumns) {
  const auto memory = MakeClub();
  Change(memory, [](Database& database) {
    for (int i = 0; i < 251; ++i) {
      database.AddColumn("Results", MakeColumn("Passing", ColumnType::Text));
      database.DropColumn("Results", "Passing");
    }
    EXPECT_THROW(database.AddColumn("Results", MakeColumn("One more", ColumnType::Text)), Error);
  });
  CompactFile(memory, kPath);
  Change(memory, [](Database& database) {
    EXPECT_EQ(database.OpenTable("Results")->Definition().columnIdCounter, 2);
    database.AddColumn("Results", MakeColumn("One more", ColumnType::Text));
    Update(database, "Results", AllPlaces(database, "Results").at(3), {{"One more", "text"}});
    EXPECT_EQ(AllRows(database, "Results").at(3).back(), Value(std::string("text")));
  });
  ExpectSound(memory, kPath);
}

TEST(Compact, GivesFreeRoomBackAndKeepsTheNumbersOfTables) {
  const auto memory = MakeClub();
  Change(memory, [](Database& database) {
    for (int i = 0; i < 700; ++i) Insert(database, "Members", {{"Name", "much"}, {"Notes", std::string(3500, 'n')}});
    TableDesign late = MakeMembers();
    late.name = "Late";
    database.CreateTable(late, kNow);
    Insert(database, "Late", {{"Name", "first"}});
  });
  Change(memory, [](Database& database) {
    for (const RowPointer row : AllPlaces(database, "Members"))
      if (row != AllPlaces(database, "Members").front()) database.OpenTable("Members")->Delete(row);
  });
  const auto pageOf = [&] {
    const auto database = OpenIn(memory, kPath);
    const ReadStatement statement(database->GetPager());
    return database->OpenTable("Late")->Definition().page;
  };
  const PageNumber page = pageOf();
  EXPECT_GT(page, 600U);
  const CompactResult result = CompactFile(memory, kPath);
  EXPECT_EQ(pageOf(), page);
  EXPECT_LT(result.bytesAfter, result.bytesBefore);
  ExpectSound(memory, kPath);
  Change(memory, [](Database& database) {
    for (int i = 0; i < 700; ++i) Insert(database, "Late", {{"Name", "much"}, {"Notes", std::string(3500, 'n')}});
  });
  ExpectSound(memory, kPath);
}

TEST(Compact, NeverOverwritesABackup) {
  const auto memory = MakeClub();
  memory->SetContents(kBackup, {1, 2, 3});
  EXPECT_EQ(CompactFile(memory, kPath).backup, "club.backup-2.mdb");
  Change(memory, [](Database& database) { Insert(database, "Members", {{"Name", "new"}}); });
  EXPECT_EQ(CompactFile(memory, kPath).backup, "club.backup-3.mdb");
  EXPECT_EQ(memory->Contents(kBackup), (MemoryFileSystem::Bytes{1, 2, 3}));
}

TEST(Compact, OfACompactedFileGivesWhatTheFirstTimeGaveAndKeepsNoSecondBackup) {
  const auto memory = MakeClub();
  const CompactResult first = CompactFile(memory, kPath);
  const auto compacted = memory->Contents(kPath);
  const CompactResult again = CompactFile(memory, kPath);
  EXPECT_EQ(again.backup, kBackup);
  EXPECT_EQ(again.bytesBefore, first.bytesBefore);
  EXPECT_EQ(again.bytesAfter, first.bytesAfter);
  EXPECT_TRUE(memory->Contents(kPath) == compacted);
  EXPECT_EQ(memory->Paths(), (std::vector<std::string>{kBackup, kPath}));
}

TEST(Compact, MendsIndexesAndCounters) {
  const auto memory = MakeClub();
  const Contents before = ContentsOf(memory, kPath);
  Change(memory, [](Database& database) {
    const auto table = database.OpenTable("Members");
    SetRowCount(database.GetPager(), table->Definition(), 5);
    const RowPointer place = AllPlaces(database, "Members").at(7);
    EXPECT_TRUE(table->Tree(0).Remove({table->Encoder(0).RowKey(table->Read(place)), place}));
  });
  EXPECT_FALSE(CheckDatabase(*OpenIn(memory, kPath)).empty());
  CompactFile(memory, kPath);
  ExpectSound(memory, kPath);
  EXPECT_EQ(ContentsOf(memory, kPath).at("Members"), before.at("Members"));
}

TEST(Compact, KeepsRowsWhoseRelatedRowIsMissing) {
  const auto memory = MakeClub();
  Change(memory, [](Database& database) {
    const auto table = database.OpenTable("Results");
    TableRows rows(database.GetPager(), table->Definition());
    const RowPointer row = rows.Insert({4711, 0.5});
    table->Tree(0).Insert({table->Encoder(0).RowKey({4711, 0.5}), row});
  });
  const Contents before = ContentsOf(memory, kPath);
  CompactFile(memory, kPath);
  EXPECT_EQ(ContentsOf(memory, kPath).at("Results"), before.at("Results"));
  EXPECT_EQ(CheckDatabase(*OpenIn(memory, kPath), CheckKind::Strict).size(), 1U);
}

TEST(Compact, RefusesAFileWhoseRowsAreHurt) {
  const auto memory = MakeClub();
  Change(memory, [](Database& database) {
    const PageNumber page = AllPlaces(database, "Members").at(0).page;
    database.GetPager().Write(page).SetU16(format::data::kFreeBytesOffset, 5);
  });
  const auto before = memory->Contents(kPath);
  EXPECT_NE(Refusal(memory).find("is damaged and was not compacted"), std::string::npos);
  EXPECT_EQ(memory->Contents(kPath), before);
  EXPECT_EQ(memory->Paths(), std::vector<std::string>{kPath});
}

TEST(Compact, RefusesAFileThatIsOpenElsewhere) {
  const auto memory = MakeClub();
  const auto before = memory->Contents(kPath);
  const auto other = OpenIn(memory, kPath);
  EXPECT_NE(Refusal(memory).find("file already in use"), std::string::npos);
  other->GetPager().Close();
  const auto lock = memory->Open("club.ldb", FileSystem::OpenMode::CreateNew);
  ASSERT_TRUE(lock->TryLock(format::lock_file::kFirstUserLock, 1, File::LockKind::Exclusive));
  EXPECT_NE(Refusal(memory).find("club.ldb"), std::string::npos);
  EXPECT_EQ(memory->Contents(kPath), before);
  EXPECT_EQ(memory->Paths(), (std::vector<std::string>{"club.ldb", kPath}));
}

TEST(Compact, RefusesAFileThatCannotBeWritten) {
  const auto memory = MakeClub();
  memory->SetReadOnly(kPath, true);
  EXPECT_NE(Refusal(memory).find("read-only"), std::string::npos);
  EXPECT_EQ(memory->Paths(), std::vector<std::string>{kPath});
}

TEST(Compact, LeavesTheFileAloneWhenTheDiskIsFull) {
  const auto memory = MakeClub();
  const auto before = memory->Contents(kPath);
  for (const std::size_t room : {std::size_t{5000}, before.size() + 5000}) {
    memory->SetCapacity(memory->BytesUsed() + room);
    EXPECT_NE(Refusal(memory).find("No space left"), std::string::npos);
    EXPECT_EQ(memory->Contents(kPath), before);
    EXPECT_EQ(memory->Paths(), std::vector<std::string>{kPath});
  }
}

void ExpectNoTraces(const MemoryFileSystem& files) {
  for (const std::string& path : files.Paths()) EXPECT_EQ(path.find(".compact"), std::string::npos) << path;
}

TEST(Compact, AfterAStopAtTheVeryEndTheNextCallOnlyNamesTheBackup) {
  const auto memory = MakeClub();
  const auto before = memory->Contents(kPath);
  const CompactResult whole = CompactFile(memory, kPath);
  const auto compacted = memory->Contents(kPath);
  memory->Rename(kBackup, std::string(kPath) + ".compact-old");
  memory->SetContents(std::string(kPath) + ".compact-old", before);
  const CompactResult rest = CompactFile(memory, kPath);
  EXPECT_EQ(rest.backup, kBackup);
  EXPECT_EQ(rest.bytesBefore, whole.bytesBefore);
  EXPECT_EQ(rest.bytesAfter, whole.bytesAfter);
  EXPECT_TRUE(memory->Contents(kPath) == compacted);
  EXPECT_EQ(memory->Paths().size(), 2U);
}

TEST(Compact, ABackupWithoutNameIsKeptWhenTheFileWasWrittenSince) {
  const auto memory = MakeClub();
  CompactFile(memory, kPath);
  memory->Rename(kBackup, std::string(kPath) + ".compact-old");
  const auto kept = memory->Contents(std::string(kPath) + ".compact-old");
  memory->SetContents(kPath, memory->Contents(kPath));
  Change(memory, [](Database& database) { Insert(database, "Members", {{"Name", "new"}}); });
  EXPECT_EQ(CompactFile(memory, kPath).backup, "club.backup-2.mdb");
  EXPECT_TRUE(memory->Contents(kBackup) == kept);
}

TEST(Compact, LeavesTheFileAloneWhenAnyCallFails) {
  using Operation = InterceptedFileSystem::Operation;
  const std::set<Operation> changing{Operation::Create, Operation::Write, Operation::Sync, Operation::Rename,
                                     Operation::SyncFolder};
  for (std::size_t call = 0;; ++call) {
    const auto memory = MakeClub();
    const auto before = memory->Contents(kPath);
    const auto failing = std::make_shared<FailingFileSystem>(memory);
    failing->FailCall(call, changing);
    try {
      CompactFile(failing, kPath);
    } catch (const Error&) {
    }
    if (!failing->HasFailed()) {
      EXPECT_GT(call, 7U);
      break;
    }
    const bool isNew = memory->Contents(kPath) != before;
    ExpectSound(memory, kPath);
    EXPECT_EQ(ContentsOf(memory, kPath).at("Members"), ContentsOf(MakeClub(), kPath).at("Members")) << call;
    if (!isNew) ExpectNoTraces(*memory);
    failing->FailNothing();
    CompactFile(failing, kPath);
    EXPECT_TRUE(memory->Contents(kBackup) == before) << call;
    ExpectNoTraces(*memory);
  }
}

TEST(Compact, SaysThatAFileCannotBeReadAndNotWhatFollowsFromIt) {
  using Operation = InterceptedFileSystem::Operation;
  const auto club = MakeClub();
  for (const bool andAllLater : {false, true}) {
    for (std::size_t call = 0;; call += andAllLater ? 1 : 5) {
      const auto memory = club->AfterCrash(CrashKind::Kept, 0);
      const auto before = memory->Contents(kPath);
      const auto failing = std::make_shared<FailingFileSystem>(memory);
      failing->FailCall(call, {Operation::Read}, andAllLater);
      try {
        CompactFile(failing, kPath);
      } catch (const Error& error) {
        EXPECT_NE(error.Description().find("Input/output error"), std::string::npos)
            << call << ": " << error.Description();
        EXPECT_NE(error.Description().find(kPath), std::string::npos) << call << ": " << error.Description();
      }
      if (!failing->HasFailed()) {
        EXPECT_GT(call, 70U);
        break;
      }
      EXPECT_TRUE(memory->Contents(kPath) == before || memory->Exists(kBackup)) << call;
    }
  }
}

TEST(Compact, SaysWhatToDoWhenTheDiskHasNoRoomForTheBackupsName) {
  using Operation = InterceptedFileSystem::Operation;
  const auto memory = MakeClub();
  const auto before = memory->Contents(kPath);
  const auto failing = std::make_shared<FailingFileSystem>(memory);
  failing->FailCall(1, {Operation::Rename});
  const std::string refusal = Refusal(failing);
  EXPECT_NE(refusal.find("is compacted"), std::string::npos) << refusal;
  EXPECT_NE(refusal.find("It is 'club.mdb.compact-old'"), std::string::npos) << refusal;
  ExpectSound(memory, kPath);
  EXPECT_TRUE(memory->Contents("club.mdb.compact-old") == before);
  EXPECT_EQ(CompactFile(memory, kPath).backup, kBackup);
  EXPECT_TRUE(memory->Contents(kBackup) == before);
  ExpectNoTraces(*memory);
}

TEST(Compact, LeavesTheOldOrTheNewFileWhenTheMachineStopsAtAnyInstant) {
  const Contents expected = ContentsOf(MakeClub(), kPath);
  std::set<bool> seen;
  for (std::size_t point = 0;; ++point) {
    const auto memory = MakeClub();
    const auto before = memory->Contents(kPath);
    const auto crashing = std::make_shared<CrashingFileSystem>(memory);
    crashing->StopAt(point, true);
    try {
      CompactFile(crashing, kPath);
    } catch (const SimulatedCrash&) {
    }
    if (!crashing->HasStopped()) {
      EXPECT_GT(point, 7U);
      break;
    }
    for (const CrashKind kind : {CrashKind::Kept, CrashKind::Dropped, CrashKind::Torn}) {
      const auto after = memory->AfterCrash(kind, static_cast<std::uint32_t>(point));
      seen.insert(after->Contents(kPath) == before);
      ExpectSound(after, kPath);
      EXPECT_EQ(ContentsOf(after, kPath).at("Members"), expected.at("Members")) << point;
      CompactFile(after, kPath);
      EXPECT_TRUE(after->Contents(kBackup) == before) << point;
      ExpectNoTraces(*after);
    }
  }
  EXPECT_EQ(seen.size(), 2U);
}

TEST(Compact, KeepsAFileEncoded) {
  const auto memory = std::make_shared<MemoryFileSystem>();
  std::vector<Page> pages = MakeNewFile(kNow);
  ToggleHeaderMask(pages[0]);
  pages[0].SetU32(format::header::kDatabaseKeyOffset, 0x12345678);
  ToggleHeaderMask(pages[0]);
  Pager::Create(*memory, kPath, pages);
  Change(memory, FillTables);
  const Contents before = ContentsOf(memory, kPath);
  CompactFile(memory, kPath);
  EXPECT_EQ(ContentsOf(memory, kPath).at("Members"), before.at("Members"));
  ExpectSound(memory, kPath);
  // A plain file has the type of a definition here.
  EXPECT_NE(memory->Contents(kPath).at(format::kObjectsTablePage * kPageSize), format::page_type::kTableDefinition);
}

TEST(Compact, WhoWaitedForTheFileGetsTheNewOne) {
  const auto memory = MakeClub();
  PagerOptions options;
  options.alone = true;
  auto holder = Pager::Open(memory, kPath, options);
  const std::vector<Page> pages = [&] {
    const auto other = MakeClub();
    Change(other, [](Database& database) { Insert(database, "Members", {{"Name", "only in the new file"}}); });
    const auto database = OpenIn(other, kPath);
    return RebuildPages(*database);
  }();
  memory->OnPause([&] {
    if (holder == nullptr) return;
    Pager::Create(*memory, "new.mdb", pages);
    memory->Rename("new.mdb", kPath);
    holder.reset();
  });
  EXPECT_NE(ContentsOf(memory, kPath).at("Members").find("only in the new file"), std::string::npos);
}

TEST(Compact, KeepsTheContentsOfRealFiles) {
  const fs::path folder = fs::path(TAVI_SAMPLE_FILES) / "access-files";
  if (!fs::exists(folder)) GTEST_SKIP() << "the sample files are not beside this checkout";
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() != ".mdb") continue;
    SCOPED_TRACE(entry.path().filename().string());
    TestFile file(entry.path().string());
    Contents before = ContentsOf(file.Get());
    file.Close();
    CompactFile(NativeFileSystem(), file.Path());
    file.Reopen();
    Contents after = ContentsOf(file.Get());
    before.erase("schema.json");
    after.erase("schema.json");
    EXPECT_TRUE(before == after);
    file.ExpectSound();
  }
}

}  // namespace
}  // namespace tavi::access::test
