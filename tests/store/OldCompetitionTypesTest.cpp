#include <gtest/gtest.h>

#include "platform/Matchers.h"
#include "store/support/ClubFile.h"

namespace tavi {
namespace {

using testing::ClubFile;
using testing::ElementsAre;

constexpr const char* kKinds = "Select Individual & '/' & IsSwiss & '/' & IsTeams From Competitions Order By ID";

/// A club of an older version, whose competitions have a one-letter code for their kind.
class OldCompetitionTypesTest : public ::testing::Test {
 protected:
  void AddOldColumn(const std::string& type) {
    club_.Prepare({"Alter Table Competitions Add Column ExternalType " + type});
  }
  void AddCompetition(const std::string& code) {
    club_.Prepare(
        {"Insert Into Competitions (CompetitionName, Individual, ExternalType) Values ('Old', 0, " + code + ")"});
  }
  void Open() {
    club_.messages->shown.clear();
    club_.store.NewDatabase();
    club_.store.OpenDB();
    club_.store.CloseDB(true);
  }
  bool HasOldColumn() { return club_.ColumnTypes("Competitions").contains("ExternalType"); }

  ClubFile club_;
};

TEST_F(OldCompetitionTypesTest, AreConvertedAndTheColumnGoes) {
  AddOldColumn("Text (1)");
  for (const char* code : {"'P'", "'i'", "'S'", "'T'", "'X'", "Null"}) AddCompetition(code);
  Open();
  EXPECT_THAT(club_.Column(kKinds), ElementsAre("0/0/0", "1/0/0", "0/-1/0", "0/0/-1", "0/0/0", "0/0/0"));
  EXPECT_FALSE(HasOldColumn());
  Open();
  EXPECT_TRUE(club_.messages->shown.empty());
}

TEST_F(OldCompetitionTypesTest, AreConvertedOnceWhereTheColumnCannotBeDropped) {
  AddOldColumn("Text (1)");
  club_.Prepare({"Create Index Kinds On Competitions (ExternalType)"});
  AddCompetition("'I'");
  AddCompetition("'X'");
  Open();
  ASSERT_TRUE(HasOldColumn());
  ASSERT_EQ(club_.messages->shown.size(), 2U);
  EXPECT_EQ(club_.messages->shown[1].title, "Database Update Warning");
  EXPECT_THAT(club_.Column(kKinds), ElementsAre("1/0/0", "0/0/0"));
  EXPECT_THAT(club_.Column("Select ExternalType From Competitions Order By ID"), ElementsAre("Null", "X"))
      << "only what was converted is emptied";
  club_.Prepare({"Update Competitions Set Individual = 0, IsTeams = -1 Where ID = 1"});
  Open();
  EXPECT_THAT(club_.Column(kKinds), ElementsAre("0/0/-1", "0/0/0")) << "a later registration stays";
}

TEST_F(OldCompetitionTypesTest, ThatMustHoldSomethingAreConvertedOnceToo) {
  AddOldColumn("Text (1) Not Null");
  club_.Prepare({"Create Index Kinds On Competitions (ExternalType)"});
  AddCompetition("'I'");
  Open();
  ASSERT_TRUE(HasOldColumn());
  EXPECT_THAT(club_.Column(kKinds), ElementsAre("1/0/0"));
  club_.Prepare({"Update Competitions Set Individual = 0"});
  Open();
  EXPECT_THAT(club_.Column(kKinds), ElementsAre("0/0/0"));
}

TEST_F(OldCompetitionTypesTest, ThatAreNoLettersCountAsNoneAndTheColumnGoes) {
  AddOldColumn("Long");
  AddCompetition("7");
  Open();
  EXPECT_FALSE(HasOldColumn());
  EXPECT_THAT(club_.Column(kKinds), ElementsAre("0/0/0"));
}

}  // namespace
}  // namespace tavi
