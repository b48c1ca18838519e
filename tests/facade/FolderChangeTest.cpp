#include <gtest/gtest.h>

#include "facade/support/Club.h"
#include "platform/ConnectionTo.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

/// Another club's folder is chosen; each club has one member.
class FolderChangeTest : public ::testing::Test {
 protected:
  FolderChangeTest() {
    club_->AddNewMember("Bob", "", "Ray");
    club_->CloseDatabase();
    club_.Folder().CopyFile("ClubMembers.mdb", "other/ClubMembers.mdb");
    club_.Execute("Update Members Set FirstName = 'Ann'");
  }
  void ChooseOther() { club_->SetDatabaseFolder(club_.Folder().Path("other")); }
  std::string Name() { return club_->GetMemberName(1, 5); }

  Club club_;
};

TEST_F(FolderChangeTest, OfAClosedFileIsFollowedAtOnce) {
  EXPECT_EQ(Name(), "Ann Ray");
  ChooseOther();
  EXPECT_EQ(Name(), "Bob Ray");
}

TEST_F(FolderChangeTest, OfAnOpenFileIsFollowedWhenItHasBeenClosed) {
  club_->OpenDatabase();
  ChooseOther();
  EXPECT_EQ(Name(), "Ann Ray") << "the open file goes on";
  club_->CloseDatabase();
  EXPECT_EQ(Name(), "Bob Ray");
}

TEST_F(FolderChangeTest, AfterAHandicapWaitsForTheEndOfTheFileTooBecauseItLeftItOpen) {
  static_cast<void>(club_->CalculateHandicaps(1, -1, "", Date::FromCivil(2000, 1, 1), true));
  ChooseOther();
  club_->SetHandicap(1, 61.0);
  EXPECT_EQ(Name(), "Ann Ray");
  club_->CloseDatabase();
  EXPECT_EQ(Name(), "Bob Ray");
  EXPECT_EQ(club_->GetHandicap(1), 50.0) << "what was stored went into the file that was open";
}

TEST_F(FolderChangeTest, BringsTheOtherFileUpToDateThoughTheOpenOneWasLookedAtMeanwhile) {
  const auto other =
      club_.SharedPlatform()->databaseProvider->Open(ConnectionTo(club_.Folder().Path("other/ClubMembers.mdb")));
  other->Execute("Alter Table Members Drop Column Stratum");
  other->Close();
  club_->OpenDatabase();
  ChooseOther();
  EXPECT_EQ(Name(), "Ann Ray");
  club_->CloseDatabase();
  EXPECT_EQ(club_->PlayersStratum(1), 0);
  EXPECT_EQ(club_.Rows("Select Stratum From Members"), (Texts{"0"}));
}

}  // namespace
}  // namespace tavi
