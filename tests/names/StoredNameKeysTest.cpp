#include "names/NameColumns.h"

#include <gtest/gtest.h>

#include "platform/support/ThisSystem.h"
#include "store/support/ClubFile.h"

namespace tavi {
namespace {

using testing::ClubFile;
using testing::FakePlatform;
using Texts = std::vector<std::string>;

constexpr const char* kKeys = "Select FuzzedFirstName & '/' & FuzzedLastName From Members Order By MembershipNumber";

class StoredNameKeys : public ::testing::Test {
 protected:
  /// Adds members whose keys another function made: 1 active, 2 retired, 3 with the keys of the service in use.
  void AddMembers() {
    const std::string insert =
        "Insert Into Members (MembershipNumber, FirstName, LastName, FuzzedFirstName, FuzzedLastName, Active) Values ";
    club_.Prepare({insert + "(1, 'Bill', 'Smyth', 'B400', 'S530', -1)", insert + "(2, 'Kate', 'Jones', Null, Null, 0)",
                   insert + "(3, 'Peggy', 'Brown', '" + Key(NameKeyMode::FirstName, "Peggy") + "', '" +
                       Key(NameKeyMode::Surname, "Brown") + "', -1)"});
  }
  [[nodiscard]] std::string Key(NameKeyMode mode, const std::string& name) const {
    return club_.platform->nameKeyService->Key(mode, name);
  }
  /// How many members have other keys than the service in use gives.
  [[nodiscard]] std::size_t Stale() const {
    const auto connection = club_.Connect();
    const auto rows =
        connection->OpenRecordset("Select FirstName, LastName, FuzzedFirstName, FuzzedLastName From Members",
                                  ado::CursorType::ForwardOnly, ado::LockType::ReadOnly, ado::SourceKind::CommandText);
    std::size_t count = 0;
    for (; !rows->AtEnd(); rows->MoveNext()) {
      const auto text = [&](const char* column) { return cDatabase::GetTextField(*rows, column); };
      const StoredNames names{text("FirstName"), text("LastName"), text("FuzzedFirstName"), text("FuzzedLastName")};
      if (WithFreshKeys(names, *club_.platform->nameKeyService) != names) ++count;
    }
    return count;
  }
  /// A store on the club whose keys another service makes.
  [[nodiscard]] std::unique_ptr<cDatabase> StoreWithKeys(std::shared_ptr<const NameKeyService> keys) const {
    auto platform = std::make_shared<Platform>(*club_.platform);
    platform->nameKeyService = std::move(keys);
    auto store = std::make_unique<cDatabase>(platform, std::vector<FirstOpenStep>());
    store->SetDatabaseFolder(club_.folder.Path());
    store->OpenDB();
    return store;
  }
  void OpenAndClose() {
    club_.store.OpenDB();
    club_.store.CloseDB(true);
  }

  ClubFile club_;
};

TEST_F(StoredNameKeys, OfAnotherFunctionAreBroughtUpToDateAtTheFirstOpen) {
  AddMembers();
  EXPECT_EQ(Stale(), 2U);
  OpenAndClose();
  EXPECT_EQ(Stale(), 0U);
  EXPECT_EQ(club_.Column(kKeys), (Texts{"WILLIAM/SMITH", "CATHERINE/JONES", "MARGARET/BROWN"}));
}

TEST_F(StoredNameKeys, ThatAreUpToDateLeaveTheFileAsItIs) {
  AddMembers();
  OpenAndClose();
  const std::string before = club_.Content();
  club_.store.NewDatabase();
  OpenAndClose();
  EXPECT_EQ(club_.Content(), before);
}

TEST_F(StoredNameKeys, AreWrittenOnlyWhereTheyDiffer) {
  AddMembers();
  const std::unique_ptr<cDatabase> store = StoreWithKeys(club_.platform->nameKeyService);
  EXPECT_EQ(RefreshNameKeys(*store).refreshed, 2U);
  EXPECT_EQ(RefreshNameKeys(*store).refreshed, 0U);
}

TEST_F(StoredNameKeys, OfAnEmptyClubAreCurrent) {
  OpenAndClose();
  EXPECT_EQ(Stale(), 0U);
}

TEST_F(StoredNameKeys, ThatDoNotFitAnOlderColumnArePassedOverAndSaidAndAllOthersAreRefreshed) {
  const testing::DiagnosticsLog log;
  club_.Prepare({"Drop Index FuzzedLastName On Members", "Alter Table Members Drop Column FuzzedLastName",
                 "Alter Table Members Add Column FuzzedLastName Text (6)"});
  const std::string insert = "Insert Into Members (MembershipNumber, FirstName, LastName) Values ";
  for (const char* member : {"(1, 'Bill', 'Smith')", "(2, 'Kate', 'Featherstone')", "(3, 'Ann', 'Featherstone')",
                             "(4, 'Liz', 'Featherstone')", "(5, 'Tom', 'Featherstone')", "(6, 'Kate', 'Jones')"}) {
    club_.Prepare({insert + member});
  }
  OpenAndClose();
  EXPECT_EQ(club_.Column("Select FuzzedLastName From Members Order By MembershipNumber"),
            (Texts{"SMITH", "Null", "Null", "Null", "Null", "JONES"}));
  EXPECT_NE(log.Text().find("Name keys that could not be brought up to date: 4. The first: Kate Featherstone: "),
            std::string::npos)
      << log.Text();
}

/// A key service that fails for some names, or for all.
class FaultyKeys : public NameKeyService {
 public:
  explicit FaultyKeys(std::string faultyName) : faultyName_(std::move(faultyName)) {}
  [[nodiscard]] std::string Key(NameKeyMode /*mode*/, std::string_view name) const override {
    if (faultyName_ == "all" || name == faultyName_) throw Error(ErrorNumber::Component, "keys", "out of order");
    return std::string(name);
  }

 private:
  std::string faultyName_;
};

TEST_F(StoredNameKeys, ThatCannotBeMadeForOneMemberAreMadeForTheOthers) {
  AddMembers();
  const std::unique_ptr<cDatabase> store = StoreWithKeys(std::make_shared<FaultyKeys>("Jones"));
  const NameKeyRefresh refresh = RefreshNameKeys(*store);
  EXPECT_EQ(refresh.refreshed, 2U);
  EXPECT_EQ(refresh.passedOver, 1U);
  EXPECT_EQ(refresh.firstPassedOver, "Kate Jones: out of order");
  store->CloseDB(true);
  EXPECT_EQ(club_.Column(kKeys), (Texts{"Bill/Smyth", "/", "Peggy/Brown"}));
}

TEST_F(StoredNameKeys, OfAFileThatRefusesOneMemberAfterTheOtherAreGivenUp) {
  AddMembers();
  const std::unique_ptr<cDatabase> store = StoreWithKeys(std::make_shared<FaultyKeys>("all"));
  try {
    static_cast<void>(RefreshNameKeys(*store));
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Description(), "nothing can be stored: Bill Smyth: out of order");
  }
}

TEST(StoredNameKeysOnAnUnwritableFile, DoNotKeepItFromOpening) {
  FakePlatform fake;
  fake.file->failures.emplace_back("FuzzedLastName From Members",
                                   Error(ErrorNumber::Component, "test", "the file is read-only"));
  cDatabase store(fake.platform, NameSteps());
  store.SetDatabaseFolder("C:\\Bridge");
  const testing::DiagnosticsLog log;
  store.OpenDB();
  EXPECT_EQ(store.OpenCount(), 1);
  EXPECT_EQ(log.Text(), "Failed to bring name keys up to date: the file is read-only\r\n");
}

}  // namespace
}  // namespace tavi
