#include <gtest/gtest.h>

#include "facade/ThreadStore.h"
#include "facade/threads/support/SharedClub.h"

namespace tavi {
namespace {

using testing::SharedClub;
using Texts = std::vector<std::string>;

/// Two public objects on one thread, which share its newest store, and what happens to a walk whose store goes.
class ObjectsOfOneThreadTest : public ::testing::Test {
 protected:
  ObjectsOfOneThreadTest() {
    first_->AddNewMember("Ann", "", "Lee");
    first_->AddNewMember("Bob", "", "Ray");
    first_->AddNewMember("Cat", "", "Fox");
  }

  bool First(MembershipDatabase& object) { return object.GetFirstMember(number_, name_, par_, 5); }
  bool Next(MembershipDatabase& object) { return object.GetNextMember(number_, name_, par_, 5); }
  bool FirstPair(MembershipDatabase& object) {
    return object.GetFirstPartnership(number_, name_, second_, secondName_, pair_, alternate_, par_, 5);
  }

  SharedClub club_;
  std::unique_ptr<MembershipDatabase> first_ = club_.NewObject();
  std::int32_t number_ = 0;
  std::int32_t second_ = 0;
  double par_ = 0.0;
  std::string name_;
  std::string secondName_;
  std::string pair_;
  std::string alternate_;
};

TEST_F(ObjectsOfOneThreadTest, KeepTheirOwnFlagsAndSettings) {
  const auto second = club_.NewObject();
  second->IncludeInactiveMembers = true;
  EXPECT_FALSE(first_->IncludeInactiveMembers);
  auto settings = std::make_shared<HandiCalcSettings>();
  settings->SetMaxWeeks(7);
  first_->SetHandicalcOptions(settings);
  EXPECT_EQ(second->HandicalcOptions().MaxWeeks(), 7) << "read when it is first needed";
  settings->SetMaxWeeks(8);
  first_->SetHandicalcOptions(settings);
  EXPECT_EQ(second->HandicalcOptions().MaxWeeks(), 7) << "and kept for the object's life";
}

TEST_F(ObjectsOfOneThreadTest, CountTheOpenFileTogether) {
  first_->OpenDatabase();
  EXPECT_EQ(ThreadStore()->OpenCount(), 1);
  const auto second = club_.NewObject();
  EXPECT_EQ(ThreadStore()->OpenCount(), 0) << "a new store came, and the file of the old one was closed";
  first_->OpenDatabase();
  second->OpenDatabase();
  EXPECT_EQ(ThreadStore()->OpenCount(), 2);
  first_->CloseDatabase();
  EXPECT_EQ(ThreadStore()->OpenCount(), 0);
}

TEST_F(ObjectsOfOneThreadTest, OneThatGoesLeavesTheStoreToTheOther) {
  {
    const auto second = club_.NewObject();
    second->OpenDatabase();
  }
  EXPECT_EQ(ThreadStore()->OpenCount(), 1);
  EXPECT_EQ(first_->FindMember("Ann Lee"), 1);
  first_->CloseDatabase();
}

TEST_F(ObjectsOfOneThreadTest, EndOneAnothersWalksBecauseBeginningOneClosesTheFile) {
  const auto second = club_.NewObject();
  ASSERT_TRUE(First(*first_));
  ASSERT_TRUE(First(*second));
  try {
    static_cast<void>(Next(*first_));
    FAIL() << "walked on a closed file";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    EXPECT_EQ(error.Description(), "The connection of the record set is closed. Open both again.");
  }
  EXPECT_TRUE(Next(*second)) << "the newer walk goes on";
  EXPECT_EQ(name_, "Bob Ray");
  first_->EndGet();
  EXPECT_FALSE(Next(*first_)) << "ended in order";
  second->EndGet();
}

TEST_F(ObjectsOfOneThreadTest, AReplacedStoreTakesItsWalkWithIt) {
  ASSERT_TRUE(First(*first_));
  const MembershipDatabase second(club_.SharedPlatform());
  name_ = "as before";
  EXPECT_THROW(static_cast<void>(Next(*first_)), Error);
  EXPECT_EQ(name_, "as before");
  EXPECT_THROW(static_cast<void>(Next(*first_)), Error) << "the walk stays where it was";
  first_->EndGet();
  EXPECT_FALSE(Next(*first_));
  club_.ExpectASoundClosedFile();
  EXPECT_THROW(static_cast<void>(First(*first_)), Error) << "the new store is at another folder, without a file";
  first_->SetDatabaseFolder(club_.Folder().Path());
  EXPECT_TRUE(First(*first_));
  first_->EndGet();
}

TEST_F(ObjectsOfOneThreadTest, AWalkIsEndedByTheNextOneOnTheNewStore) {
  ASSERT_TRUE(First(*first_));
  const auto second = club_.NewObject();
  ASSERT_TRUE(First(*first_)) << "begins anew, on the new store";
  EXPECT_EQ(name_, "Ann Lee");
  EXPECT_EQ(ThreadStore()->OpenCount(), 1);
  ASSERT_TRUE(Next(*first_));
  first_->EndGet();
  EXPECT_EQ(ThreadStore()->OpenCount(), 0);
}

TEST_F(ObjectsOfOneThreadTest, RetiredPlayersOfOneClubAreNotRetiredInAnother) {
  first_->AddRegularPair(1, 2);
  first_->DeleteMember(2);
  EXPECT_FALSE(FirstPair(*first_)) << "the walk meets a retired player and ends";
  EXPECT_EQ(club_.Column("Select Active From Partnerships"), (Texts{"False"}));

  club_.MakeFile("other");
  first_->SetDatabaseFolder(club_.Folder().Path("other"));
  for (const char* name : {"Sue", "Tim"}) first_->AddNewMember(name, "", "Moor");
  first_->AddRegularPair(1, 2);
  EXPECT_TRUE(First(*first_)) << "ends the walk before";
  first_->EndGet();
  EXPECT_EQ(club_.Column("Select Active From Partnerships", "other"), (Texts{"True"}));
}

}  // namespace
}  // namespace tavi
