// The scope object by which hosts in C++ make several operations one.
#include "facade/DatabaseTransaction.h"

#include <gtest/gtest.h>

#include "facade/ThreadStore.h"
#include "facade/support/Club.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

/// Scores an event of one pair as a host does.
void Score(MembershipDatabase& club, const std::string& name) {
  const std::int32_t id = club.SetCompetition(name, Club::kToday, false, 0, 0, 0, 10, 1, 0, true);
  club.NoteCompetitorResult(id, 1, "Ann Lee", 2, "Bob Ray", 55.5, 54.5);
  club.AddMasterPoints(id, 1, 1, "Ann Lee", 2, "Bob Ray", 12.0, 0);
  club.EndResultUpdate(id);
}

class DatabaseTransactionTest : public ::testing::Test {
 protected:
  DatabaseTransactionTest() {
    club_->AddNewMember("Ann", "", "Lee");
    club_->AddNewMember("Bob", "", "Ray");
  }
  [[nodiscard]] Texts Tables() {
    Texts rows;
    for (const char* table : {"Members", "Competitions", "Results", "MasterPoints"}) {
      rows.push_back(club_.Rows("Select Count(*) From " + std::string(table)).front());
    }
    return rows;
  }

  Club club_;
};

TEST_F(DatabaseTransactionTest, WithoutCommitNothingHasHappened) {
  const Texts before = Tables();
  {
    const DatabaseTransaction transaction;
    club_->AddNewMember("Cid", "", "Fox");
    Score(*club_, "Pairs");
    EXPECT_EQ(club_->GetMemberName(3, 0), "Cid Fox");
  }
  EXPECT_EQ(Tables(), before);
}

TEST_F(DatabaseTransactionTest, CommitStoresAllOfIt) {
  {
    DatabaseTransaction transaction;
    club_->AddNewMember("Cid", "", "Fox");
    Score(*club_, "Pairs");
    transaction.Commit();
  }
  EXPECT_EQ(Tables(), (Texts{"3", "1", "1", "2"}));
}

// Calculations leave the file counted open once more, within a transaction as without one.
TEST_F(DatabaseTransactionTest, TheOpenCountIsAfterwardsWhatItIsWithoutOne) {
  Score(*club_, "Alone");
  const int alone = club_.OpenCount();
  club_->CloseDatabase();
  {
    DatabaseTransaction transaction;
    Score(*club_, "Kept");
    transaction.Commit();
  }
  EXPECT_EQ(club_.OpenCount(), alone);
  club_->CloseDatabase();
  {
    const DatabaseTransaction transaction;
    Score(*club_, "Undone");
  }
  EXPECT_EQ(club_.OpenCount(), alone);
  club_->CloseDatabase();
  EXPECT_EQ(club_.OpenCount(), 0);
}

TEST_F(DatabaseTransactionTest, WalksWithinItDoNotEndIt) {
  {
    DatabaseTransaction transaction;
    club_->AddNewMember("Cid", "", "Fox");
    int seen = 0;
    std::int32_t number = 0;
    std::string name;
    double handicap = 0.0;
    for (bool more = club_->GetFirstMember(number, name, handicap, 0); more;
         more = club_->GetNextMember(number, name, handicap, 0)) {
      ++seen;
    }
    club_->EndGet();
    EXPECT_EQ(seen, 3);
    club_->AddNewMember("Dan", "", "Orr");
    transaction.Commit();
  }
  EXPECT_EQ(Tables().front(), "4");
  EXPECT_EQ(club_.OpenCount(), 0);
}

TEST_F(DatabaseTransactionTest, AnOperationThatFailsLeavesTheOthers) {
  {
    DatabaseTransaction transaction;
    club_->AddNewMember("Cid", "", "Fox");
    EXPECT_THROW(club_->AddNewMember("Ann", "", "Lee"), Error);
    club_->CloseDatabase();
    club_->AddNewMember("Dan", "", "Orr");
    transaction.Commit();
  }
  EXPECT_EQ(Tables().front(), "4");
}

TEST_F(DatabaseTransactionTest, OnAThreadWithoutAStoreItDoesNotBegin) {
  const std::shared_ptr<cDatabase> store = ThreadStore();
  SetThreadStore(nullptr);
  EXPECT_THROW(const DatabaseTransaction transaction, Error);
  SetThreadStore(store);
}

}  // namespace
}  // namespace tavi
