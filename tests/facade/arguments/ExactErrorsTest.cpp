#include <gtest/gtest.h>

#include <limits>

#include "facade/support/Club.h"

namespace tavi {
namespace {

using testing::Club;
using namespace std::string_literals;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr auto kRefused = "Invalid procedure call or argument: ";

/// What bad arguments are answered with, in a club with the members 1 and 2.
class ExactErrorsTest : public ::testing::Test {
 protected:
  ExactErrorsTest() {
    club_->AddNewMember("Ann", "", "Lee");
    club_->AddNewMember("Bob", "", "Ray");
  }

  template <typename Operation>
  std::string ErrorOf(ErrorNumber number, Operation operation) {
    try {
      operation();
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(number)) << error.Number();
      return error.Description();
    }
    return "accepted";
  }
  template <typename Operation>
  std::string Refusal(Operation operation) {
    const std::string description = ErrorOf(ErrorNumber::InvalidArgument, operation);
    return description.starts_with(kRefused) ? description.substr(std::string(kRefused).size()) : description;
  }

  Club club_;
  bool retired_ = false;
};

TEST_F(ExactErrorsTest, WhatIsNoNumberCannotBeAHandicap) {
  EXPECT_EQ(Refusal([&] { club_->SetHandicap(1, kNaN); }), "the handicap cannot be NaN; pass an ordinary number.");
  EXPECT_EQ(Refusal([&] { club_->SetPairHandicap(1, 2, -kInfinity); }),
            "the pair's handicap cannot be -Infinity; pass an ordinary number.");
  EXPECT_EQ(Refusal([&] { club_->AddNewMember("Cat", "", "Fox", kInfinity); }),
            "the handicap cannot be Infinity; pass an ordinary number.");
  EXPECT_EQ(Refusal([&] { club_->CheckMembershipID(9, "Cat Fox", kNaN, retired_); }),
            "the handicap cannot be NaN; pass an ordinary number.");
  EXPECT_EQ(club_->AddNewMember("Dan", "", "Moor", kNaN), 3) << "no handicap of 1 or more: 50";
  EXPECT_EQ(club_->GetHandicap(3), 50.0);
}

TEST_F(ExactErrorsTest, AResultIsRefusedBeforeAnythingOfItIsStored) {
  const Date day = Date::FromCivil(2025, 9, 17);
  const std::int32_t id = club_->SetCompetition("Tuesday", day, false, 0, 0, 0, 5, 2, 0, true);
  EXPECT_EQ(Refusal([&] { club_->NoteCompetitorResult(id, 1, "", 2, "", 50.0, kNaN); }),
            "the net percentage cannot be NaN; pass an ordinary number.");
  EXPECT_EQ(Refusal([&] { club_->NoteCompetitorResult(id, 1, "", 2, "", 50.0, 50.0, kInfinity); }),
            "the applied handicap cannot be Infinity; pass an ordinary number.");
  EXPECT_EQ(Refusal([&] { club_->UpdateResult(id, false, 1, "", 2, "", kNaN, 50.0, 0); }),
            "the actual percentage cannot be NaN; pass an ordinary number.")
      << "rather than repeated for ever";
  EXPECT_EQ(Refusal([&] { club_->AddMasterPoints(id, 1, 1, "", -1, std::string(256, 'x'), 0.5, 0); }),
            "the second player's name has 256 characters, and at most 255 are possible; shorten it.");
  EXPECT_EQ(club_.Rows("Select * From Results").size() + club_.Rows("Select * From MasterPoints").size(), 0U);
  club_->CloseDatabase();
}

TEST_F(ExactErrorsTest, ADateIsOneOfTheYears100To9999) {
  const auto registering = [&](double day) {
    return Refusal([&] { club_->SetCompetition("Tuesday", Date{day}, false, 0, 0, 0, 5, 2, 0, true); });
  };
  EXPECT_EQ(registering(kNaN), "a date cannot be day NaN; pass a date of the years 100 to 9999.");
  EXPECT_EQ(registering(2958466.0), "a date cannot be day 2958466; pass a date of the years 100 to 9999.");
  EXPECT_EQ(registering(-657435.0), "a date cannot be day -657435; pass a date of the years 100 to 9999.");
  EXPECT_EQ(Refusal([&] { static_cast<void>(club_->CalculateHandicaps(1, 2, "", Date{1e300}, false)); }),
            "a date cannot be day 1E+300; pass a date of the years 100 to 9999.");
  EXPECT_EQ(club_.OpenCount(), 0);
  EXPECT_EQ(registering(-657434.5), "accepted") << "1 January 100, 12:00";
  club_->CloseDatabase();
}

TEST_F(ExactErrorsTest, TextsAreNoLongerThanTheirPlace) {
  const std::string enormous(1'000'000, 'x');
  EXPECT_EQ(Refusal([&] { static_cast<void>(club_->FindMember(enormous)); }),
            "a text has 1000000 characters, and at most 60000 are possible; shorten it.");
  EXPECT_EQ(ErrorOf(ErrorNumber::ProviderFailure, [&] { club_->AddNewMember(std::string(51, 'x'), "", "Lee"); }),
            "The field is too small to accept the amount of data you attempted to add. Try inserting or pasting less "
            "data. The field 'FirstName' takes 50, the value has 51.");
  EXPECT_EQ(Refusal([&] {
              club_->SetCompetitionEx("Tuesday", Date{}, false, 0, 0, false, false, 0, 0, 0, std::string(21, 'x'), 0,
                                      false);
            }),
            "the governing body has 21 characters, and at most 20 are possible; shorten it.");
  EXPECT_EQ(club_.OpenCount(), 0);
}

TEST_F(ExactErrorsTest, BehindTheLargestNumberNobodyCanBeAdded) {
  EXPECT_EQ(club_->CheckMembershipID(2147483647, "Cat Fox", 50.0, retired_), -1);
  EXPECT_EQ(ErrorOf(ErrorNumber::Overflow, [&] { club_->AddNewMember("Dan", "", "Moor"); }),
            "Overflow: there is no membership number behind 2147483647; give the member who has it another one.");
}

TEST_F(ExactErrorsTest, SettingsThatCannotBeStoredLeaveTheStoredOnesAndTheHeldOnes) {
  auto settings = std::make_shared<HandiCalcSettings>();
  settings->SetMaxWeeks(5);
  club_->SetHandicalcOptions(settings);
  auto bad = std::make_shared<HandiCalcSettings>();
  bad->SetRegularPairAdd(kNaN);
  EXPECT_EQ(Refusal([&] { club_->SetHandicalcOptions(bad); }),
            "RegularPairAdd cannot be NaN; pass an ordinary number.");
  EXPECT_EQ(club_->HandicalcOptions().MaxWeeks(), 5);
  EXPECT_EQ(club_.Rows("Select MaxWeeks From HandicalcSettings"), (std::vector<std::string>{"5"}));
}

TEST_F(ExactErrorsTest, NamesOfAllCharactersComeBackAsTheyWere) {
  for (const std::string& name : {"a\0b"s, "\xED\xA0\x80"s, "\xED\xB0\x80z"s, "\xF0\x9F\x82\xA1"s,
                                  "x'; Delete from Members; '"s, "%p%c%l%\r\n%"s}) {
    std::string first;
    std::string initials;
    std::string last;
    static_cast<void>(club_->GetEBUNoAndNames(club_->AddNewMember("Eve", "", name), first, initials, last));
    EXPECT_EQ(last, name);
  }
}

TEST_F(ExactErrorsTest, BytesThatAreNoTextAreStoredAsReplacementCharacters) {
  const std::int32_t number = club_->AddNewMember("A\xFFZ", "", "Cut\xE2\x82");
  EXPECT_EQ(club_->GetMemberName(number, 5), "A\xEF\xBF\xBDZ Cut\xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
}  // namespace tavi
