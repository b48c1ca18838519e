// The older combined operation hides errors and repeats: every provider call of it fails, once and several times.

#include <gtest/gtest.h>

#include <algorithm>

#include "facade/faults/support/FaultyClub.h"
#include "facade/faults/support/Operations.h"

namespace tavi {
namespace {

using testing::FaultyClub;
using testing::kFault;
using testing::ProviderCall;
using testing::ProviderCalls;
using Kind = ProviderCall::Kind;

class OlderUpdateFaultTest : public ::testing::Test {
 protected:
  /// A registration that does not count for handicaps, and the file open once more because of it.
  void Register() {
    club_.SetBack();
    id_ = club_->SetCompetition("Friday", Date::FromCivil(2025, 9, 19), false, 0, 0, 0, 5, 2, 0, false);
    club_.Plan().Start();
  }
  void Update() { club_->UpdateResult(id_, false, 2, "12", 3, "Jane Smith", 55.0, 59.0, 3); }

  std::size_t StoredWith(const std::string& beginning, const std::string& part) const {
    const std::vector<std::string> rows = club_.StoredRows();
    return static_cast<std::size_t>(std::count_if(rows.begin(), rows.end(), [&](const std::string& row) {
      return row.starts_with(beginning) && row.find(part) != std::string::npos;
    }));
  }
  std::size_t Results() const { return StoredWith("Results | " + std::to_string(id_) + " | ", ""); }
  std::size_t AwardsOf(int member) const {
    return StoredWith("MasterPoints | ", " | " + std::to_string(member) + " |  | " + std::to_string(id_) + " | ");
  }

  FaultyClub club_;
  std::int32_t id_ = 0;
};

int CountOf(const ProviderCalls& calls, const std::string& beginning) {
  return static_cast<int>(
      std::count_if(calls.begin(), calls.end(), [&](const ProviderCall& call) { return call.Asks(beginning); }));
}

TEST_F(OlderUpdateFaultTest, AnyCallMayFailOnceAndTheStepsAreRepeated) {
  Register();
  Update();
  const ProviderCalls calls = club_.Plan().Calls();
  ASSERT_GT(calls.size(), 8U);
  for (std::size_t number = 1; number <= calls.size(); ++number) {
    SCOPED_TRACE("call " + std::to_string(number) + ": " + Description(calls.at(number - 1)));
    Register();
    club_.Plan().FailAt(number, kFault);
    EXPECT_NO_THROW(Update());
    const ProviderCalls before(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(number) - 1);
    const bool isNoted = std::any_of(before.begin(), before.end(),
                                     [](const ProviderCall& call) { return call.kind == Kind::CommitTrans; });
    EXPECT_EQ(Results(), isNoted ? 2U : 1U) << "a result that was noted stays, of any other nothing does";
    EXPECT_EQ(AwardsOf(2), 1U) << "the repetition clears the first award";
    EXPECT_EQ(AwardsOf(12), 1U);
    EXPECT_EQ(club_.OpenCount(), isNoted ? 2 : 1) << "an award that fails leaves the file open once more";
  }
}

TEST_F(OlderUpdateFaultTest, AnErrorThatRecursIsRepeatedUntilItEnds) {
  constexpr int kTimes = 40;
  Register();
  club_.Plan().FailWhere([](const ProviderCall& call) { return call.Asks("Insert into MasterPoints"); }, kFault,
                         kTimes);
  EXPECT_NO_THROW(Update());
  EXPECT_EQ(CountOf(club_.Plan().Calls(), "Select MasterPointsColour"), 1) << "the colour is looked at once";
  EXPECT_EQ(CountOf(club_.Plan().Calls(), "Insert into Results"), kTimes + 1);
  EXPECT_EQ(Results(), static_cast<std::size_t>(kTimes) + 1);
  EXPECT_EQ(AwardsOf(2), 1U);
  EXPECT_EQ(AwardsOf(12), 1U);
  EXPECT_EQ(club_.OpenCount(), 1 + kTimes);
}

TEST_F(OlderUpdateFaultTest, AFileThatDoesNotOpenAtFirstIsTheOnlyErrorThatReachesTheCaller) {
  club_.SetBack();
  club_.Plan().FailAt(1, kFault);
  try {
    Update();
    FAIL() << "the caller saw no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::Component));
    EXPECT_EQ(error.Description(),
              "Failed to open membership database " + club_->DatabaseFileName() + ":\r\n\r\n" + kFault.Description());
  }
  EXPECT_EQ(club_.Plan().Calls().size(), 1U);
  EXPECT_EQ(club_.OpenCount(), 0);
}

TEST_F(OlderUpdateFaultTest, AFailedClosingStoresEverythingOnceMore) {
  club_.SetBack();
  club_.Plan().FailWhere([](const ProviderCall& call) { return call.kind == Kind::CloseConnection; }, kFault, 1);
  EXPECT_NO_THROW(Update());
  EXPECT_EQ(Results(), 2U);
  EXPECT_EQ(AwardsOf(2), 1U);
  EXPECT_EQ(AwardsOf(12), 2U) << "the awards of the number that the name spells are not cleared";
  EXPECT_EQ(club_.OpenCount(), 0);
}

}  // namespace
}  // namespace tavi
