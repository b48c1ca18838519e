#include <gtest/gtest.h>

#include "platform/support/ThisSystem.h"
#include "store/OpenUse.h"
#include "store/cDatabase.h"
#include "store/support/FakeFile.h"

namespace tavi {
namespace {

using testing::DiagnosticsLog;
using testing::FakePlatform;

class StoreConnectionTest : public ::testing::Test {
 protected:
  StoreConnectionTest() { store_.SetDatabaseFolder("C:\\Bridge\\Database"); }
  /// How often the layout was checked.
  std::size_t LayoutChecks() const { return fake_.file->StatementsWith("Create Table EBUMembershipList").size(); }

  FakePlatform fake_;
  cDatabase store_{fake_.platform, {}};
};

Error ErrorOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& error) {
    return error;
  }
  return Error(0, "none", "no error was raised");
}

TEST_F(StoreConnectionTest, TheFilePathIsFolderAndFileName) {
  EXPECT_EQ(store_.DatabaseFilePath(), "C:\\Bridge\\Database\\ClubMembers.mdb");
  EXPECT_EQ(store_.DatabaseFolder(), "C:\\Bridge\\Database");
  EXPECT_EQ(cDatabase::EBUMembersTable(), "EBUMembershipList");
}

TEST_F(StoreConnectionTest, WithoutAFolderNothingIsOpened) {
  cDatabase store(fake_.platform, {});
  const Error error = ErrorOf([&] { store.OpenDB(); });
  EXPECT_TRUE(error.Is(ErrorNumber::Component));
  EXPECT_EQ(error.Number(), -2147221504);
  EXPECT_EQ(error.Source(), "cDatabase");
  EXPECT_EQ(error.Description(), "Attempt to use database before path set.");
  EXPECT_EQ(fake_.file->connectionStrings.size(), 0U);
}

TEST_F(StoreConnectionTest, TheConnectionStringNamesProviderAndFile) {
  store_.OpenDB();
  EXPECT_EQ(fake_.file->connectionStrings.at(0),
            "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=C:\\Bridge\\Database\\ClubMembers.mdb");
}

TEST_F(StoreConnectionTest, AFileThatCannotBeOpenedIsLoggedAndRaised) {
  const DiagnosticsLog log;
  fake_.file->openFailures = 1;
  const Error error = ErrorOf([&] { store_.OpenDB(); });
  const std::string message =
      "Failed to open membership database C:\\Bridge\\Database\\ClubMembers.mdb:\r\n\r\nCould not find file.";
  EXPECT_TRUE(error.Is(ErrorNumber::Component));
  EXPECT_EQ(error.Source(), "cDatabase");
  EXPECT_EQ(error.Description(), message);
  EXPECT_EQ(log.Text(), message + "\r\n");
  EXPECT_EQ(store_.OpenCount(), 0);
  store_.OpenDB();
  EXPECT_EQ(store_.OpenCount(), 1);
  EXPECT_EQ(LayoutChecks(), 1U) << "the failed opening has not used up the layout check";
}

TEST_F(StoreConnectionTest, CreatingAStoreWritesADiagnosticsLine) {
  const DiagnosticsLog log;
  const cDatabase store(fake_.platform, {});
  EXPECT_EQ(log.Text(), "TaviMembership Initialising\r\n");
}

TEST_F(StoreConnectionTest, TwoOpensAndOneCloseLeaveTheFileOpenAndAForcedCloseClosesIt) {
  store_.OpenDB();
  store_.OpenDB();
  store_.CloseDB(false);
  EXPECT_EQ(store_.OpenCount(), 1);
  EXPECT_EQ(fake_.file->closes, 0);
  store_.OpenDB();
  store_.CloseDB(true);
  EXPECT_EQ(store_.OpenCount(), 0);
  EXPECT_EQ(fake_.file->opens, 1);
  EXPECT_EQ(fake_.file->closes, 1);
}

TEST_F(StoreConnectionTest, ClosingAClosedStoreDoesNothing) {
  store_.CloseDB(false);
  store_.CloseDB(true);
  EXPECT_EQ(store_.OpenCount(), 0);
  EXPECT_EQ(fake_.file->closes, 0);
}

TEST_F(StoreConnectionTest, TheOpenCountStandsStillAtItsLargestNumber) {
  for (int count = 0; count < 32767; ++count) store_.OpenDB();
  store_.OpenDB();
  EXPECT_EQ(store_.OpenCount(), 32767);
  store_.Execute("Delete from Results");
  { const OpenUse use(store_); }
  EXPECT_EQ(store_.OpenCount(), 32767) << "what was not counted is not counted down";
  store_.CloseDB(false);
  EXPECT_EQ(store_.OpenCount(), 32766);
  store_.CloseDB(true);
  EXPECT_EQ(fake_.file->opens, 1);
  EXPECT_EQ(fake_.file->closes, 1);
}

TEST_F(StoreConnectionTest, DestroyingAStoreClosesItsFile) {
  {
    cDatabase store(fake_.platform, {});
    store.SetDatabaseFolder("C:\\Other");
    store.OpenDB();
    store.OpenDB();
  }
  EXPECT_EQ(fake_.file->closes, 1);
}

TEST_F(StoreConnectionTest, ExecuteOpensAndClosesAClosedStore) {
  store_.Execute("Delete from Results");
  EXPECT_EQ(fake_.file->opens, 1);
  EXPECT_EQ(fake_.file->closes, 1);
  EXPECT_EQ(fake_.file->statements.back(), "Delete from Results");
}

TEST_F(StoreConnectionTest, ExecuteRaisesTheProvidersErrorUnchangedAndBalancesTheCount) {
  store_.OpenDB();
  fake_.file->failures.emplace_back("Delete", Error(ErrorNumber::ProviderNoTable, "Microsoft JET", "No such table."));
  const Error error = ErrorOf([&] { store_.Execute("Delete from Nothing"); });
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderNoTable));
  EXPECT_EQ(error.Source(), "Microsoft JET");
  EXPECT_EQ(error.Description(), "No such table.");
  EXPECT_EQ(store_.OpenCount(), 1);
}

TEST_F(StoreConnectionTest, RecordSetsAreOpenedPessimisticallyAsTextOrTable) {
  store_.OpenDB();
  static_cast<void>(store_.OpenRecordset("Settings", ado::CursorType::Dynamic, true));
  EXPECT_EQ(fake_.file->recordsets.back().sourceKind, ado::SourceKind::TableDirect);
  EXPECT_EQ(fake_.file->recordsets.back().cursorType, ado::CursorType::Dynamic);
  static_cast<void>(store_.OpenRecordset("Select * from Members"));
  EXPECT_EQ(fake_.file->recordsets.back().sourceKind, ado::SourceKind::CommandText);
  EXPECT_EQ(fake_.file->recordsets.back().cursorType, ado::CursorType::ForwardOnly);
  EXPECT_EQ(fake_.file->recordsets.back().lockType, ado::LockType::Pessimistic);
  EXPECT_EQ(store_.OpenCount(), 1) << "record sets are not counted";
}

TEST_F(StoreConnectionTest, ARecordSetNeedsAnOpenStore) {
  EXPECT_TRUE(ErrorOf([&] { static_cast<void>(store_.OpenRecordset("Members")); }).Is(ErrorNumber::NoObject));
}

TEST_F(StoreConnectionTest, TheFirstOpenChecksTheLayoutOnce) {
  store_.OpenDB();
  store_.CloseDB(true);
  store_.OpenDB();
  EXPECT_EQ(LayoutChecks(), 1U);
  EXPECT_EQ(store_.OpenCount(), 1);
}

TEST_F(StoreConnectionTest, AnotherFolderMakesTheCheckPendingAgainButNotAnotherLetterCase) {
  store_.Execute("x");
  store_.SetDatabaseFolder("c:\\BRIDGE\\database");
  EXPECT_EQ(store_.DatabaseFolder(), "c:\\BRIDGE\\database") << "the new writing is kept all the same";
  store_.Execute("x");
  EXPECT_EQ(LayoutChecks(), 1U);
  store_.SetDatabaseFolder("D:\\Bridge");
  store_.Execute("x");
  EXPECT_EQ(LayoutChecks(), 2U);
  store_.NewDatabase();
  store_.Execute("x");
  EXPECT_EQ(LayoutChecks(), 3U);
}

TEST_F(StoreConnectionTest, AnotherFolderSetWhileTheFileIsOpenIsCheckedThereAndAgainInItsOwnFile) {
  store_.OpenDB();
  store_.SetDatabaseFolder("D:\\Other");
  EXPECT_EQ(LayoutChecks(), 1U);
  store_.Execute("x");
  EXPECT_EQ(LayoutChecks(), 2U) << "the pending check looks at the file that is open";
  EXPECT_EQ(fake_.file->opens, 1);
  store_.Execute("x");
  EXPECT_EQ(LayoutChecks(), 2U);
  store_.CloseDB(true);
  store_.Execute("x");
  EXPECT_EQ(fake_.file->connectionStrings.back(),
            "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=D:\\Other\\ClubMembers.mdb");
  EXPECT_EQ(LayoutChecks(), 3U) << "the other folder's own file";
  store_.Execute("x");
  EXPECT_EQ(LayoutChecks(), 3U);
}

TEST_F(StoreConnectionTest, AnotherFolderWhoseFileDoesNotOpenAtFirstIsCheckedWhenItDoes) {
  store_.OpenDB();
  store_.SetDatabaseFolder("D:\\Other");
  store_.Execute("x");
  store_.CloseDB(true);
  fake_.file->openFailures = 1;
  ErrorOf([&] { store_.OpenDB(); });
  store_.OpenDB();
  EXPECT_EQ(LayoutChecks(), 3U);
}

TEST_F(StoreConnectionTest, AnotherFolderThatIsOpenedWithoutACheckBeforeIsCheckedOnce) {
  store_.OpenDB();
  store_.SetDatabaseFolder("D:\\Other");
  store_.CloseDB(true);
  store_.Execute("x");
  store_.Execute("x");
  EXPECT_EQ(LayoutChecks(), 2U);
}

TEST_F(StoreConnectionTest, TheFirstOpenStepsAreTakenInTheirOrderBehindEachLayoutCheck) {
  const auto step = [](const std::string& statement) {
    return FirstOpenStep{statement, [statement](cDatabase& store) { store.Execute(statement); }};
  };
  cDatabase store(fake_.platform, {step("first step"), step("second step")});
  store.SetDatabaseFolder("C:\\Bridge");
  store.OpenDB();
  store.OpenDB();
  ASSERT_GE(fake_.file->statements.size(), 2U);
  EXPECT_EQ(std::vector<std::string>(fake_.file->statements.end() - 2, fake_.file->statements.end()),
            (std::vector<std::string>{"first step", "second step"}));
  store.SetDatabaseFolder("D:\\Bridge");
  store.OpenDB();
  EXPECT_EQ(LayoutChecks(), 2U);
  EXPECT_EQ(fake_.file->StatementsWith("first step").size(), 2U);
  EXPECT_EQ(store.OpenCount(), 3);
}

TEST_F(StoreConnectionTest, AnErrorOfTheFirstOpenLeavesTheCountBalanced) {
  cDatabase store(fake_.platform, {{"failing", [](cDatabase& opened) { opened.Execute("fail"); }}});
  store.SetDatabaseFolder("C:\\Bridge");
  fake_.file->failures.emplace_back("fail", Error(ErrorNumber::ProviderNoTable, "Microsoft JET", "No such table."));
  EXPECT_TRUE(ErrorOf([&] { store.OpenDB(); }).Is(ErrorNumber::ProviderNoTable));
  EXPECT_EQ(store.OpenCount(), 0);
  EXPECT_EQ(fake_.file->closes, 1);
}

TEST_F(StoreConnectionTest, AnOpenUseCountsDownOnEveryPath) {
  {
    const OpenUse use(store_);
    EXPECT_EQ(store_.OpenCount(), 1);
  }
  EXPECT_EQ(store_.OpenCount(), 0);
  ErrorOf([&] {
    const OpenUse use(store_);
    throw Error(ErrorNumber::Component, "test", "on its way");
  });
  EXPECT_EQ(store_.OpenCount(), 0);
  {
    OpenUse use(store_);
    use.KeepOpen();
  }
  EXPECT_EQ(store_.OpenCount(), 1);
}

}  // namespace
}  // namespace tavi
