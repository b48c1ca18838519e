#include "facade/arguments/BadArguments.h"

#include <gtest/gtest.h>

#include <optional>

#include "access/catalog/Check.h"
#include "access/file/Pager.h"
#include "facade/support/Club.h"

namespace tavi {
namespace {

using testing::BadArgumentOperation;
using testing::BadArgumentOperations;
using testing::BadCall;
using testing::Club;
using Texts = std::vector<std::string>;

constexpr const char* kFileName = "ClubMembers.mdb";

/// A club with four members, two pairs, two competitions with results and awards, of which no bad value means member 3
/// or 4, their pair, or the second competition.
class BadArgumentsTest : public ::testing::TestWithParam<BadArgumentOperation> {
 protected:
  BadArgumentsTest() {
    Prepare();
    club_->CloseDatabase();
    club_.Folder().CopyFile(kFileName, "Prepared.mdb");
    bystanders_ = Bystanders();
  }

  void Prepare() {
    club_->OpenDatabase();
    for (const char* first : {"Ann", "Bob", "Cat", "Dan"}) club_->AddNewMember(first, "", "Hill", 40.0);
    club_->AddRegularPair(1, 2);
    club_->AddRegularPair(3, 4);
    for (const char* name : {"Tuesday", "Other"}) {
      const std::int32_t id = club_->SetCompetition(name, Date::FromCivil(2025, 9, 17), false, 0, 0, 0, 5, 2, 0, true);
      club_->NoteCompetitorResult(id, 1, "", 2, "", 55.0, 60.0);
      club_->NoteCompetitorResult(id, 3, "", 4, "", 45.0, 40.0);
      club_->AddMasterPoints(id, 1, 1, "", -1, "Vic Vis", 0.5, 0);
    }
    for (const char* statement :
         {"Insert into EBUMembershipList (EBUNumber, FirstName, LastName) Values (77, 'Sue', 'Fox')",
          "Insert into EBUMembershipList (EBUNumber, FirstName, LastName) Values (78, 'Tim', 'Fox')",
          "Insert into ClubNames (ClubName) Values ('Old Club')", "Insert into Settings (LastMPCertificate) Values (7)",
          "Insert into ClubPolicies (MemberType, SpecificDate, Subs) Values ('Standard', 0, 12.5)",
          "Delete from HandicalcSettings",
          "Insert into HandicalcSettings (MaxWeeks, MaxResults, SamePartnerWeighting, RegularPairMultiplier, "
          "RegularPairAdd, UnknownPlayerHandicap, Disabled) Values (0, 0, 75, 1.5, 1, 45, 0)"}) {
      club_.Execute(statement);
    }
  }

  /// Puts the prepared club back, with a new public object.
  void StartAnew() {
    club_->CloseDatabase();
    club_.Folder().CopyFile("Prepared.mdb", kFileName);
    club_.Reopen();
    // The layout check of the first opening belongs to no operation.
    club_->OpenDatabase();
    club_->CloseDatabase();
  }

  Texts Everything() {
    Texts rows;
    for (const char* table : {"Members", "Partnerships", "Competitions", "Results", "MasterPoints", "Settings",
                              "ClubNames", "ClubPolicies", "HandicalcSettings", "EBUMembershipList"}) {
      rows.emplace_back(table);
      for (const std::string& row : club_.Rows(std::string("Select * From ") + table)) rows.push_back(row);
    }
    return rows;
  }

  Texts Bystanders() {
    Texts rows;
    for (const char* query :
         {"Select * From Members Where MembershipNumber = 3 Or MembershipNumber = 4",
          "Select * From Partnerships Where LowerPlayer = 3", "Select * From Competitions Where ID = 2",
          "Select * From Results Where Competition = 2", "Select * From MasterPoints Where CompetitionID = 2",
          "Select * From ClubNames Where ClubID = 1", "Select * From ClubPolicies",
          "Select * From EBUMembershipList"}) {
      for (const std::string& row : club_.Rows(query)) rows.push_back(row);
    }
    return rows;
  }

  /// Makes the call on the prepared club and looks at what it left behind.
  void ExpectNoHarm(const BadArgumentOperation& operation, const BadCall& bad) {
    StartAnew();
    if (operation.preparation) operation.preparation(*club_);
    const Texts before = Everything();
    const int usesBefore = club_.OpenCount();
    const std::optional<Error> error = ErrorOf(bad);
    EXPECT_EQ(club_.OpenCount() - usesBefore, error ? operation.usesLeftByError : operation.usesLeft);
    club_->CloseDatabase();
    if (error) {
      ExpectAReadableMessage(*error);
      EXPECT_EQ(Everything(), before) << "half-written";
    }
    EXPECT_EQ(Bystanders(), bystanders_);
    ExpectASoundClosedFile();
  }

  std::optional<Error> ErrorOf(const BadCall& bad) {
    try {
      bad.call(*club_);
      return std::nullopt;
    } catch (const Error& error) {
      return error;
    }
  }

  /// Long enough to say what is wrong, short enough to be read.
  static void ExpectAReadableMessage(const Error& error) {
    EXPECT_GT(error.Description().size(), 20U) << error.Description();
    EXPECT_LT(error.Description().size(), 1000U) << error.Description().substr(0, 1000);
  }

  void ExpectASoundClosedFile() {
    EXPECT_EQ(club_.OpenCount(), 0);
    EXPECT_FALSE(club_.Folder().Has(std::string(kFileName) + ".redo")) << "the file is not closed";
    access::Database database(access::Pager::Open(club_.Folder().Files(), club_.Folder().Path(kFileName), {}));
    EXPECT_EQ(access::CheckDatabase(database), Texts());
    database.GetPager().Close();
  }

  Club club_;
  Texts bystanders_;
};

TEST_P(BadArgumentsTest, RaiseAClearErrorOrDoWhatIsPromisedAndHarmNothingElse) {
  for (const std::vector<BadCall>& argument : GetParam().arguments) {
    for (const BadCall& bad : argument) {
      SCOPED_TRACE(bad.what);
      ExpectNoHarm(GetParam(), bad);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Of, BadArgumentsTest, ::testing::ValuesIn(BadArgumentOperations()),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace tavi
