#include "names/NameColumns.h"

#include <gtest/gtest.h>

#include "store/support/FakeFile.h"

namespace tavi {
namespace {

using testing::FakePlatform;
using testing::FakeRows;

constexpr const char* kAllMembers =
    "Select FirstName, MiddleInitials, LastName, UniquenessFlag From Members Where Active <> 0 Order By FirstName, "
    "LastName, MiddleInitials";

class NameUniquenessTest : public ::testing::Test {
 protected:
  NameUniquenessTest() { store_.SetDatabaseFolder("C:\\Bridge"); }

  /// The flags that members, given sorted as first name and surname, have afterwards.
  std::vector<int> FlagsOf(const std::vector<std::pair<const char*, const char*>>& names) {
    FakeRows& rows = fake_.file->answers[kAllMembers];
    rows.fields = {"FirstName", "MiddleInitials", "LastName", "UniquenessFlag"};
    rows.rows.clear();
    for (const auto& [first, last] : names) {
      rows.rows.push_back({std::string(first), Null(), std::string(last), Null()});
    }
    SetNameUniquenessFlags(store_, "");
    std::vector<int> flags;
    for (const auto& row : rows.rows) flags.push_back(std::get<std::int16_t>(row[3]));
    return flags;
  }

  FakePlatform fake_;
  cDatabase store_{fake_.platform, {}};
};

using Flags = std::vector<int>;

TEST_F(NameUniquenessTest, TheFlagIsTheSmallestLevelAgainstANeighbour) {
  EXPECT_EQ(FlagsOf({{"John", "Smith"}}), Flags{4});
  EXPECT_EQ(FlagsOf({{"John", "Smith"}, {"John", "Smyth"}}), (Flags{2, 2}));
  EXPECT_EQ(FlagsOf({{"John", "Brown"}, {"John", "Smith"}}), (Flags{3, 3}));
  EXPECT_EQ(FlagsOf({{"Jane", "Smith"}, {"John", "Smith"}}), (Flags{4, 4}));
  EXPECT_EQ(FlagsOf({{"John", "Smith"}, {"John", "Smith"}}), (Flags{1, 1}));
  EXPECT_EQ(FlagsOf({{"Ann", "Lee"}, {"John", "Brown"}, {"John", "Smith"}, {"John", "Smith"}, {"john", "smyth"}}),
            (Flags{4, 3, 1, 1, 2}));
}

TEST_F(NameUniquenessTest, NamesAreComparedIgnoringCaseByCharacters) {
  EXPECT_EQ(FlagsOf({{"ÉLOÏSE", "ÉCLAIR"}, {"éloïse", "éclair"}}), (Flags{1, 1}));
  EXPECT_EQ(FlagsOf({{"Ann", "Éclair"}, {"Ann", "Èze"}}), (Flags{3, 3})) << "two letters, though one first byte";
}

TEST_F(NameUniquenessTest, MembersWithoutNamesAreNamesakes) {
  EXPECT_EQ(FlagsOf({{"", ""}, {"", ""}}), (Flags{1, 1}));
}

TEST_F(NameUniquenessTest, AClubWithoutMembersIsNoError) {
  EXPECT_EQ(FlagsOf({}), Flags{});
}

TEST_F(NameUniquenessTest, OneFirstNameAloneIsLookedAtWhenGiven) {
  store_.OpenDB();
  SetNameUniquenessFlags(store_, "D'Arcy");
  EXPECT_EQ(
      fake_.file->recordsets.back().source,
      "Select FirstName, MiddleInitials, LastName, UniquenessFlag From Members Where Active <> 0  And FirstName = "
      "'D''Arcy'Order By FirstName, LastName, MiddleInitials");
}

}  // namespace
}  // namespace tavi
