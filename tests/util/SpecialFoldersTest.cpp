#include "util/Paths.h"

#include <gtest/gtest.h>

#include "platform/support/ThisSystem.h"
#include "platform/values/Error.h"

namespace tavi {
namespace {

using Location = ShellFolders::Location;
using Questions = std::vector<std::string>;

const Error kShellError(ErrorNumber::InvalidArgument, "shell", "no such library");

/// Answers what a test lays down, nothing to all else, and remembers what it was asked.
class FakeShell : public ShellFolders {
 public:
  [[nodiscard]] std::optional<std::string> FolderPath(std::int32_t number) const override {
    asked.push_back("path " + std::to_string(number));
    if (number == failing) throw kShellError;
    const auto found = paths.find(number);
    return found == paths.end() ? std::nullopt : std::optional(found->second);
  }
  [[nodiscard]] std::optional<Location> FolderLocation(std::int32_t number) const override {
    asked.push_back("location " + std::to_string(number));
    if (number == failing) throw kShellError;
    const auto found = locations.find(number);
    return found == locations.end() ? std::nullopt : std::optional(found->second);
  }

  std::map<std::int32_t, std::string> paths;
  std::map<std::int32_t, Location> locations;
  std::int32_t failing = -1;  ///< the folder for which both ways fail
  mutable Questions asked;
};

class SpecialFolderPathTest : public ::testing::Test {
 protected:
  std::string PathOf(std::int32_t number, bool create = false) {
    number_ = number;
    return SpecialFolderPath(shell_, number_, create);
  }

  FakeShell shell_;
  std::int32_t number_ = 0;
};

TEST_F(SpecialFolderPathTest, TheFirstWayOfAskingIsEnoughWhenItAnswers) {
  shell_.paths[46] = "C:\\Common";
  EXPECT_EQ(PathOf(46), "C:\\Common");
  EXPECT_EQ(number_, 46);
  EXPECT_EQ(shell_.asked, (Questions{"path 46"}));
}

TEST_F(SpecialFolderPathTest, CreateSetsTheCreateBitInTheCallersNumber) {
  shell_.paths[0x8000 | 35] = "C:\\Data";
  EXPECT_EQ(PathOf(35, true), "C:\\Data");
  EXPECT_EQ(number_, 0x8000 | 35);
  EXPECT_EQ(shell_.asked, (Questions{"path 32803"}));
}

TEST_F(SpecialFolderPathTest, TheOlderWayAnswersWhenItsCallReturnsZero) {
  shell_.locations[5] = Location{"C:\\Old", false};
  EXPECT_EQ(PathOf(5), "C:\\Old");
  EXPECT_EQ(shell_.asked, (Questions{"path 5", "location 5"}));
}

TEST_F(SpecialFolderPathTest, ANonZeroReturnOfTheOlderWayIsTakenForFailure) {
  shell_.locations[5] = Location{"C:\\Old", true};
  EXPECT_EQ(PathOf(5), "");
  EXPECT_EQ(shell_.asked, (Questions{"path 5", "location 5"}));
}

TEST_F(SpecialFolderPathTest, CommonDocumentsFallBackToTheUsersOwn) {
  shell_.paths[5] = "C:\\Ann";
  EXPECT_EQ(PathOf(46), "C:\\Ann");
  EXPECT_EQ(number_, 46) << "the fallback has a number of its own";
  EXPECT_EQ(shell_.asked, (Questions{"path 46", "location 46", "path 5"}));
}

TEST_F(SpecialFolderPathTest, WithCreateThereIsNoFallbackBecauseTheNumberHasChanged) {
  EXPECT_EQ(PathOf(46, true), "");
  EXPECT_EQ(shell_.asked, (Questions{"path 32814", "location 32814"}));
}

TEST_F(SpecialFolderPathTest, OtherFoldersHaveNoFallback) {
  EXPECT_EQ(PathOf(5), "");
  EXPECT_EQ(shell_.asked, (Questions{"path 5", "location 5"}));
}

TEST_F(SpecialFolderPathTest, ErrorsOfTheShellAreLoggedAndCountAsNoAnswer) {
  const testing::DiagnosticsLog log;
  shell_.failing = 46;
  shell_.paths[5] = "C:\\Ann";
  EXPECT_EQ(PathOf(46), "C:\\Ann");
  EXPECT_EQ(log.Text(), "SHGetFolderPath error: no such library\r\nSHGetFolderPath error: no such library\r\n");
  EXPECT_EQ(shell_.asked, (Questions{"path 46", "location 46", "path 5"}));
}

}  // namespace
}  // namespace tavi
