#include <gtest/gtest.h>

#include "members/Members.h"
#include "store/support/ClubFile.h"

namespace tavi {
namespace {

using testing::ClubFile;

/// A club's file that nobody may write.
class ReadOnlyFileTest : public ::testing::Test {
 protected:
  /// One member, whose name is told apart by as much as the flag says.
  void PrepareMember(const std::string& uniquenessFlag) {
    const auto& keys = *club_.platform->nameKeyService;
    club_.Prepare(
        {"Insert Into Members (MembershipNumber, FirstName, LastName, FuzzedFirstName, FuzzedLastName, "
         "UniquenessFlag) Values (1, 'Ann', 'Lee', '" +
         keys.Key(NameKeyMode::FirstName, "Ann") + "', '" + keys.Key(NameKeyMode::Surname, "Lee") + "', " +
         uniquenessFlag + ")"});
    club_.folder.Files()->SetReadOnly(club_.FilePath(), true);
  }

  ClubFile club_;
};

TEST_F(ReadOnlyFileTest, OpensWhereNothingHasToBeBroughtUpToDate) {
  PrepareMember("4");
  EXPECT_EQ(GetFullName(club_.store, 1), "Ann Lee");
}

TEST_F(ReadOnlyFileTest, WithOldUniquenessFlagsFailsTheFirstCallAndNoOther) {
  PrepareMember("1");
  try {
    static_cast<void>(GetFullName(club_.store, 1));
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderPermission)) << error.Description();
  }
  EXPECT_EQ(club_.store.OpenCount(), 0);
  EXPECT_EQ(GetFullName(club_.store, 1), "Ann Lee");
}

}  // namespace
}  // namespace tavi
