// Every provider call of the first opening of an older file fails once: what is added or carried over is so whole.

#include <gtest/gtest.h>

#include <functional>

#include "facade/faults/support/FaultyClub.h"

namespace tavi {
namespace {

using testing::FaultyClub;
using testing::kFault;
using Texts = std::vector<std::string>;

/// A club's file that is made older by some statements.
class LayoutFaultTest : public ::testing::Test {
 protected:
  /// Fails each call of the first opening in turn and shows the file to `check` after another, undisturbed one.
  void FailEachCall(const Texts& statements, const std::function<void()>& check) {
    MakeOlder(statements);
    static_cast<void>(club_->GetHandicap(2));
    const testing::ProviderCalls calls = club_.Plan().Calls();
    for (std::size_t number = 1; number <= calls.size(); ++number) {
      SCOPED_TRACE("call " + std::to_string(number) + ": " + Description(calls.at(number - 1)));
      MakeOlder(statements);
      club_.Plan().FailAt(number, kFault);
      try {
        static_cast<void>(club_->GetHandicap(2));
      } catch (const Error&) {
        // Some calls concern more than the layout; the file is looked at below.
      }
      club_.Plan().Start();
      club_.Reopen();
      static_cast<void>(club_->GetHandicap(2));
      check();
    }
  }
  void MakeOlder(const Texts& statements) {
    club_.SetBack(true);
    for (const std::string& statement : statements) club_.ExecuteAtFirst(statement);
    club_.Plan().Start();
  }
  FaultyClub club_;
};

TEST_F(LayoutFaultTest, AnAddedColumnIsNeverLeftWithoutItsDefault) {
  FailEachCall({"Alter Table MasterPoints Drop Column SessionNo"},
               [this] { EXPECT_EQ(club_.Single("Select Count(*) From MasterPoints Where SessionNo = -1"), 4); });
}

TEST_F(LayoutFaultTest, AnOldKindOfCompetitionIsCarriedOverOnceAndWhole) {
  FailEachCall(
      {"Alter Table Competitions Add Column ExternalType Text (1)", "Update Competitions Set ExternalType = 'I'"},
      [this] { EXPECT_EQ(club_.Single("Select Count(*) From Competitions Where Individual <> 0"), 1); });
}

TEST_F(LayoutFaultTest, AnOldKindOfCompetitionIsCarriedOverWhereItsColumnCannotBeRemoved) {
  FailEachCall({"Alter Table Competitions Add Column ExternalType Text (1)",
                "Create Index Kinds On Competitions (ExternalType)", "Update Competitions Set ExternalType = 'I'"},
               [this] {
                 EXPECT_EQ(club_.Single("Select Count(*) From Competitions Where Individual <> 0"), 1);
                 EXPECT_EQ(club_.Single("Select Count(*) From Competitions Where ExternalType = 'I'"), 0);
               });
}

}  // namespace
}  // namespace tavi
