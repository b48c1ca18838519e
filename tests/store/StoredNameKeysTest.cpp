#include "store/StoredNameKeys.h"

#include <gtest/gtest.h>

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
  [[nodiscard]] std::size_t Stale() const {
    const auto connection = club_.Connect();
    return CountStaleNameKeys(*connection, *club_.platform->nameKeyService);
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

TEST_F(StoredNameKeys, AreAskedForWithoutAChange) {
  AddMembers();
  const std::string before = club_.Content();
  const auto connection = club_.Connect();
  EXPECT_FALSE(NameKeysAreCurrent(*connection, *club_.platform->nameKeyService));
  connection->Close();
  EXPECT_EQ(club_.Content(), before);
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
  const auto connection = club_.Connect();
  EXPECT_EQ(RefreshNameKeys(*connection, *club_.platform->nameKeyService), 2U);
  EXPECT_EQ(RefreshNameKeys(*connection, *club_.platform->nameKeyService), 0U);
  connection->Close();
}

TEST_F(StoredNameKeys, OfAnEmptyClubAreCurrent) {
  OpenAndClose();
  EXPECT_EQ(Stale(), 0U);
}

TEST(StoredNameKeysOnAnUnwritableFile, DoNotKeepItFromOpening) {
  FakePlatform fake;
  fake.file->failures.emplace_back("FuzzedLastName From Members",
                                   Error(ErrorNumber::Component, "test", "the file is read-only"));
  cDatabase store(fake.platform);
  store.SetDatabaseFolder("C:\\Bridge");
  store.OpenDB();
  EXPECT_EQ(store.OpenCount(), 1);
}

}  // namespace
}  // namespace tavi
