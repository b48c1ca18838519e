// Every call that an operation makes of the database provider fails once: what the caller sees, what is stored, what
// stays open, and that the operation works again.

#include <gtest/gtest.h>

#include "facade/faults/support/FaultyClub.h"
#include "facade/faults/support/Operations.h"

namespace tavi {
namespace {

using testing::ErrorFate;
using testing::FaultyClub;
using testing::kFault;
using testing::Operation;
using testing::Progress;
using testing::ProviderCall;
using Texts = std::vector<std::string>;

/// What a call of an operation came to.
struct Outcome {
  std::optional<Error> error;
  std::string result;
};

Outcome Attempt(const Operation& operation, MembershipDatabase& club) {
  try {
    return {std::nullopt, operation.call(club)};
  } catch (const Error& error) {
    return {error, ""};
  }
}

/// One operation, on a file that is closed or held open before it. Its undisturbed call tells which calls there are to
/// fail, and what is stored before each of them and at the end.
class ProviderFaultTest : public ::testing::TestWithParam<std::tuple<Operation, bool>> {
 protected:
  void SetUp() override {
    Prepare();
    openCountBefore_ = club_.OpenCount();
    club_.Plan().Start();
    club_.Plan().before = [this] { storedBefore_.push_back(club_.StoredRows()); };
    undisturbed_ = Attempt(TheOperation(), *club_);
    club_.Plan().before = nullptr;
    calls_ = club_.Plan().Calls();
    EXPECT_EQ(club_.OpenCount(), TheOperation().openCount({openCountBefore_, calls_, false}));
    storedAtTheEnd_ = club_.StoredRows();
  }

  static const Operation& TheOperation() { return std::get<0>(GetParam()); }

  void Prepare() {
    club_.SetBack();
    if (std::get<1>(GetParam())) club_->OpenDatabase();
    TheOperation().prepare(*club_);
    club_.Plan().Start();
  }

  /// Fails the call of a number and compares what follows with what was promised.
  void FailAt(std::size_t number) {
    Prepare();
    club_.Plan().FailAt(number, kFault);
    const Outcome outcome = Attempt(TheOperation(), *club_);
    Progress progress{openCountBefore_, club_.Plan().Calls(), true};
    const bool isHidden = IsHidden(number);
    ExpectErrorOf(outcome, calls_.at(number - 1), isHidden);
    if (!isHidden) {
      EXPECT_EQ(progress.calls.size(), CallsUntilTheCallerSees(number)) << "and nothing else was done";
    }
    progress.calls.resize(number);
    if (isHidden) progress = {openCountBefore_, calls_, false};
    EXPECT_EQ(club_.OpenCount(), TheOperation().openCount(progress));
    EXPECT_EQ(club_.StoredRows(), isHidden ? storedAtTheEnd_ : storedBefore_.at(number - 1))
        << "finished statements stay, the failing one changes nothing";
    if (TheOperation().isAllOrNothing) {
      const Texts stored = club_.StoredRows();
      EXPECT_TRUE(stored == storedBefore_.front() || stored == storedAtTheEnd_) << "a part of it is stored";
    }
    club_.Plan().Start();
    ExpectWorksAgain();
  }

  bool IsHidden(std::size_t number) const {
    const testing::ProviderCalls made(calls_.begin(), calls_.begin() + static_cast<std::ptrdiff_t>(number));
    return TheOperation().fate({openCountBefore_, made, true}) == ErrorFate::Hidden;
  }

  /// The failing call, and the closing of a file that the operation itself had opened.
  std::size_t CallsUntilTheCallerSees(std::size_t number) {
    const testing::ProviderCalls& made = club_.Plan().Calls();
    const bool isClosed = made.size() > number && made.back().kind == ProviderCall::Kind::CloseConnection;
    return number + (isClosed ? 1 : 0);
  }

  void ExpectErrorOf(const Outcome& outcome, const ProviderCall& call, bool isHidden) {
    if (isHidden) {
      EXPECT_FALSE(outcome.error) << outcome.error->Description();
      return;
    }
    ASSERT_TRUE(outcome.error) << "the caller saw no error";
    if (call.kind == ProviderCall::Kind::Open) {
      EXPECT_TRUE(outcome.error->Is(ErrorNumber::Component));
      EXPECT_EQ(outcome.error->Source(), "cDatabase");
      EXPECT_EQ(outcome.error->Description(),
                "Failed to open membership database " + club_->DatabaseFileName() + ":\r\n\r\n" + kFault.Description());
      return;
    }
    EXPECT_EQ(outcome.error->Number(), kFault.Number());
    EXPECT_EQ(outcome.error->Source(), kFault.Source());
    EXPECT_EQ(outcome.error->Description(), kFault.Description());
  }

  void ExpectWorksAgain() {
    const Outcome again = Attempt(TheOperation(), *club_);
    if (again.error && !TheOperation().refusal.empty()) {
      EXPECT_EQ(again.error->Description(), TheOperation().refusal);
      return;
    }
    EXPECT_FALSE(again.error) << again.error->Description();
    if (!TheOperation().isRepeatable) return;
    EXPECT_EQ(again.result, undisturbed_.result);
    EXPECT_EQ(club_.StoredRows(), storedAtTheEnd_);
  }

  FaultyClub club_;
  int openCountBefore_ = 0;
  Outcome undisturbed_;
  testing::ProviderCalls calls_;
  std::vector<Texts> storedBefore_;
  Texts storedAtTheEnd_;
};

TEST_P(ProviderFaultTest, EachCallMayFailOnce) {
  ASSERT_FALSE(undisturbed_.error) << undisturbed_.error->Description();
  for (std::size_t number = 1; number <= calls_.size(); ++number) {
    SCOPED_TRACE("call " + std::to_string(number) + " of " + std::to_string(calls_.size()) + ": " +
                 Description(calls_.at(number - 1)));
    FailAt(number);
  }
}

std::string NameOf(const ::testing::TestParamInfo<std::tuple<Operation, bool>>& info) {
  return std::get<0>(info.param).name + (std::get<1>(info.param) ? "_fileOpen" : "_fileClosed");
}

INSTANTIATE_TEST_SUITE_P(Operations, ProviderFaultTest,
                         ::testing::Combine(::testing::ValuesIn(testing::Operations()), ::testing::Bool()), NameOf);

TEST(SearchFaultTest, WhatWasFoundBeforeAFaultyRowIsReturned) {
  FaultyClub club;
  club.SetBack();
  ASSERT_EQ(club->SearchEBUList("", "Smith").size(), 2U);
  club.Plan().FailWhere([](const ProviderCall& call) { return call.kind == ProviderCall::Kind::MoveNext; }, kFault, 1);
  const std::vector<EBUMembershipDetails> found = club->SearchEBUList("", "Smith");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].EBUNumber(), "100002");
  EXPECT_EQ(club.OpenCount(), 0);
}

}  // namespace
}  // namespace tavi
