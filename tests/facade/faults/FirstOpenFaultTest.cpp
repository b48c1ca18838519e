// Every provider call of the first opening of a file, which checks its layout and refreshes the uniqueness flags, fails
// once.

#include <gtest/gtest.h>

#include <algorithm>

#include "facade/faults/support/FaultyClub.h"

namespace tavi {
namespace {

using testing::FaultyClub;
using testing::kFault;
using testing::ProviderCall;
using testing::ProviderCalls;
using Kind = ProviderCall::Kind;

class FirstOpenFaultTest : public ::testing::Test {
 protected:
  FirstOpenFaultTest() {
    club_.SetBack(true);
    stored_ = club_.StoredRows();
    club_.Plan().Start();
    handicap_ = club_->GetHandicap(2);
    calls_ = club_.Plan().Calls();
    const auto pass = std::find_if(calls_.begin(), calls_.end(), [](const ProviderCall& call) {
      return call.Asks("Select FirstName, MiddleInitials, LastName, UniquenessFlag");
    });
    layoutCalls_ = static_cast<std::size_t>(pass - calls_.begin());
    keyCallsBegin_ = FirstAsking("Select FirstName, LastName, FuzzedFirstName");
    keyCallsEnd_ = FirstAsking("Select Handicap From Members");
  }

  /// The number of the first call with a statement that begins so.
  std::size_t FirstAsking(const std::string& statement) const {
    const auto asks = [&](const ProviderCall& call) { return call.Asks(statement); };
    return static_cast<std::size_t>(std::find_if(calls_.begin(), calls_.end(), asks) - calls_.begin()) + 1;
  }
  bool BelongsToTheKeys(std::size_t number) const { return number >= keyCallsBegin_ && number < keyCallsEnd_; }

  /// Fails the call of a number; what the caller sees.
  std::optional<Error> FailAt(std::size_t number) {
    club_.SetBack(true);
    messagesBefore_ = club_.Messages().size();
    club_.Plan().FailAt(number, kFault);
    try {
      EXPECT_EQ(club_->GetHandicap(2), handicap_);
      return std::nullopt;
    } catch (const Error& error) {
      return error;
    }
  }
  std::size_t ShownMessages() const { return club_.Messages().size() - messagesBefore_; }

  void ExpectWorksAgain() {
    EXPECT_EQ(club_.OpenCount(), 0);
    EXPECT_EQ(club_.StoredRows(), stored_) << "layout and rows are as they were";
    club_.Plan().Start();
    messagesBefore_ = club_.Messages().size();
    EXPECT_EQ(club_->GetHandicap(2), handicap_);
    EXPECT_EQ(ShownMessages(), 0U);
    EXPECT_EQ(club_.OpenCount(), 0);
  }

  FaultyClub club_;
  double handicap_ = 0.0;
  std::vector<std::string> stored_;
  ProviderCalls calls_;
  /// The calls before the uniqueness pass; the first one opens the file.
  std::size_t layoutCalls_ = 0;
  /// The calls that bring the stored name keys up to date, by number; behind them the operation itself.
  std::size_t keyCallsBegin_ = 0;
  std::size_t keyCallsEnd_ = 0;
  std::size_t messagesBefore_ = 0;
};

/// True for the look at a column that a current file has.
bool LooksAtPresentColumn(const ProviderCall& call) {
  if (!call.Asks("Select Top 1 ")) return false;
  for (const char* obsolete : {"DirectCreditMPs", "GoverningBody", "ExternalType", "MasterPointsCode"}) {
    if (call.text.find(obsolete) != std::string::npos) return false;
  }
  return true;
}

TEST_F(FirstOpenFaultTest, FaultsOfTheLayoutCheckNeverReachTheCaller) {
  ASSERT_GT(layoutCalls_, 40U);
  ASSERT_LT(layoutCalls_, calls_.size());
  for (std::size_t number = 2; number <= layoutCalls_; ++number) {
    const ProviderCall& call = calls_.at(number - 1);
    SCOPED_TRACE("call " + std::to_string(number) + ": " + Description(call));
    const auto error = FailAt(number);
    EXPECT_FALSE(error) << error->Description();
    EXPECT_EQ(ShownMessages(), LooksAtPresentColumn(call) ? 1U : 0U)
        << "a column that could not be looked at counts as missing, and adding it once more changes nothing";
    ExpectWorksAgain();
  }
}

TEST_F(FirstOpenFaultTest, FaultsOfTheUniquenessPassReachTheCallerAndLeaveTheFileClosed) {
  for (std::size_t number = layoutCalls_ + 1; number <= calls_.size(); ++number) {
    if (BelongsToTheKeys(number)) continue;
    SCOPED_TRACE("call " + std::to_string(number) + ": " + Description(calls_.at(number - 1)));
    const auto error = FailAt(number);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->Number(), kFault.Number());
    EXPECT_EQ(error->Source(), kFault.Source());
    EXPECT_EQ(error->Description(), kFault.Description());
    EXPECT_EQ(ShownMessages(), 0U);
    ExpectWorksAgain();
  }
}

TEST_F(FirstOpenFaultTest, FaultsWhileNameKeysAreBroughtUpToDateNeverReachTheCaller) {
  ASSERT_GT(keyCallsBegin_, layoutCalls_);
  ASSERT_LT(keyCallsBegin_, keyCallsEnd_);
  ASSERT_LE(keyCallsEnd_, calls_.size());
  for (std::size_t number = keyCallsBegin_; number < keyCallsEnd_; ++number) {
    SCOPED_TRACE("call " + std::to_string(number) + ": " + Description(calls_.at(number - 1)));
    const auto error = FailAt(number);
    EXPECT_FALSE(error) << error->Description();
    EXPECT_EQ(ShownMessages(), 0U);
    ExpectWorksAgain();
  }
}

TEST_F(FirstOpenFaultTest, AFileThatDoesNotOpenIsCheckedByTheNextOpening) {
  const auto error = FailAt(1);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->Description(),
            "Failed to open membership database " + club_->DatabaseFileName() + ":\r\n\r\n" + kFault.Description());
  EXPECT_EQ(club_.OpenCount(), 0);
  club_.Plan().Start();
  EXPECT_EQ(club_->GetHandicap(2), handicap_);
  EXPECT_EQ(club_.Plan().Calls().size(), calls_.size());
}

TEST_F(FirstOpenFaultTest, ARepairedFlagIsStoredByTheNextOpeningOfAnotherObject) {
  const auto makeWrong = [this] { club_.ExecuteAtFirst("Update Members Set UniquenessFlag = 7 Where Active <> 0"); };
  club_.SetBack(true);
  makeWrong();
  club_.Plan().FailWhere([](const ProviderCall& call) { return call.kind == Kind::Update; }, kFault, 1);
  EXPECT_THROW(static_cast<void>(club_->GetHandicap(2)), Error);
  club_.Plan().Start();
  EXPECT_EQ(club_->GetHandicap(2), handicap_);
  EXPECT_NE(club_.StoredRows(), stored_) << "the pass belongs to the first opening";
  club_.Reopen();
  EXPECT_EQ(club_->GetHandicap(2), handicap_);
  EXPECT_EQ(club_.StoredRows(), stored_);
}

}  // namespace
}  // namespace tavi
