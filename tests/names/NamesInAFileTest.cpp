#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

#include "names/NameColumns.h"
#include "names/NameSearch.h"
#include "platform/Matchers.h"
#include "platform/values/Text.h"
#include "store/OpenUse.h"
#include "store/support/ClubFile.h"

namespace tavi {
namespace {

using testing::ClubFile;
using testing::ElementsAre;
using Numbers = std::vector<std::int32_t>;

/// Names of members in a file of the real engine.
class NamesInAFileTest : public ::testing::Test {
 protected:
  void AddMember(int number, const std::string& first, const std::string& initials, const std::string& last) {
    const NameKeyService& keys = *club_.platform->nameKeyService;
    club_.store.Execute(
        "Insert into Members (MembershipNumber, FirstName, MiddleInitials, LastName, FuzzedFirstName, "
        "FuzzedLastName) Values (" +
        std::to_string(number) + ", " + cDatabase::SQLString(first) + ", " + cDatabase::SQLString(initials) + ", " +
        cDatabase::SQLString(last) + ", " + cDatabase::SQLString(keys.Key(NameKeyMode::FirstName, first)) + ", " +
        cDatabase::SQLString(keys.Key(NameKeyMode::Surname, last)) + ")");
  }

  ClubFile club_;
};

/// The flag of a member by comparing it with every other one.
int FlagByBruteForce(const std::vector<std::pair<std::string, std::string>>& names, std::size_t member) {
  int flag = 4;
  for (std::size_t other = 0; other < names.size(); ++other) {
    if (other == member || !EqualIgnoringCase(names[other].first, names[member].first)) continue;
    const std::string& left = names[other].second;
    const std::string& right = names[member].second;
    const bool sameLetter = EqualIgnoringCase(FirstCharacters(left, 1), FirstCharacters(right, 1));
    flag = std::min(flag, EqualIgnoringCase(left, right) ? 1 : sameLetter ? 2 : 3);
  }
  return flag;
}

TEST_F(NamesInAFileTest, UniquenessFlagsAgreeWithComparingEveryPairOfMembers) {
  const std::array<const char*, 5> firstNames{"Ann", "ANN", "Anna", "John", "john"};
  const std::array<const char*, 8> surnames{"Smith", "smith", "Smyth", "Brown", "Bro", "Lee", "LEE", "Young"};
  std::mt19937 random(20240315);
  const OpenUse use(club_.store);
  for (int round = 0; round < 20; ++round) {
    club_.store.Execute("Delete From Members");
    std::vector<std::pair<std::string, std::string>> names;
    for (int number = 1; number <= 8; ++number) {
      names.emplace_back(firstNames.at(random() % firstNames.size()), surnames.at(random() % surnames.size()));
      AddMember(number, names.back().first, "", names.back().second);
    }
    SetNameUniquenessFlags(club_.store, "");
    std::vector<std::string> expected;
    for (std::size_t member = 0; member < names.size(); ++member) {
      expected.push_back(std::to_string(FlagByBruteForce(names, member)));
    }
    ASSERT_EQ(club_.Column("Select UniquenessFlag From Members Order By MembershipNumber"), expected) << round;
  }
}

TEST_F(NamesInAFileTest, FlagsOfOtherFirstNamesAndOfRetiredMembersStay) {
  AddMember(1, "John", "", "Smith");
  AddMember(2, "John", "", "Smyth");
  AddMember(3, "Ann", "", "Lee");
  AddMember(4, "John", "", "Smith");
  club_.store.Execute("Update Members Set UniquenessFlag = 7");
  club_.store.Execute("Update Members Set Active = 0 Where MembershipNumber = 4");
  SetNameUniquenessFlags(club_.store, "John");
  EXPECT_THAT(club_.Column("Select UniquenessFlag From Members Order By MembershipNumber"),
              ElementsAre("2", "2", "7", "7"));
  SetNameUniquenessFlags(club_.store, "");
  EXPECT_THAT(club_.Column("Select UniquenessFlag From Members Order By MembershipNumber"),
              ElementsAre("2", "2", "4", "7"));
}

TEST_F(NamesInAFileTest, MembersAreFoundByTypedNames) {
  AddMember(1, "John", "A", "O'Neil");
  AddMember(2, "John", "", "O'Neil");
  AddMember(3, "Éloïse", "", "Łukasz");
  AddMember(4, "Stephen", "", "Phillips");
  EXPECT_EQ(FindMember(club_.store, "John O'Neil", true), 2);
  EXPECT_EQ(FindMember(club_.store, "John A O'Neil", true), 1);
  EXPECT_EQ(FindMember(club_.store, "John AB O'Neil", false), -1) << "both fit";
  EXPECT_EQ(FindMember(club_.store, "Éloïse Łukasz", true), 3);
  EXPECT_EQ(FindNearestMatches(club_.store, "John ONeil"), (Numbers{2, 1}));
  EXPECT_EQ(FindNearestMatches(club_.store, "Steven Philips"), (Numbers{4}));
  EXPECT_EQ(FindNearestMatches(club_.store, "Eloise Lukasz"), (Numbers{3}));
  EXPECT_TRUE(FindNearestMatches(club_.store, "Nobody Known").empty());
}

}  // namespace
}  // namespace tavi
