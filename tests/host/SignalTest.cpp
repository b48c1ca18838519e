// What ends programs otherwise is an answer of the command: files that may not grow, readers that are gone.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "SourceDirectory.h"
#include "host/commands/Context.h"
#include "host/support/Command.h"
#include "platform/Matchers.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Signals : public ::testing::Test {
 protected:
  /// Runs a line of the shell in which "tavi" is the command on the club; the exit code, or what ended it below zero.
  /// What it writes to standard error is in `error_` then.
  int Shell(const std::string& before, const std::string& arguments, const std::string& after = "") {
    const std::string error = folder_.Path("error");
    const std::string line = before + " '" + TAVI_PROGRAM + "' --db '" + folder_.Club() + "' --today 2026-01-15 " +
                             arguments + " 2> '" + error + "'" + after;
    const int status = std::system(line.c_str());
    error_ = ReadFile(error);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }
  /// The exit code of the command itself when nobody reads what it writes.
  int WithoutReader(const std::string& arguments) {
    const std::string code = folder_.Path("code");
    Shell("(sleep 0.2;", arguments, "; echo $? > '" + code + "') | true");
    std::ifstream stream(code);
    int value = -1;
    stream >> value;
    return value;
  }
  [[nodiscard]] std::vector<std::string> NamesInClub() const {
    std::vector<std::string> names;
    if (!fs::exists(folder_.Club())) return names;
    for (const auto& entry : fs::directory_iterator(folder_.Club())) names.push_back(entry.path().filename().string());
    return names;
  }

  CommandFolder folder_;
  std::string examples_ = std::string(TAVI_SOURCE_DIR) + "/examples/club/";
  std::string error_;
};

TEST_F(Signals, NewWhoseFileMayNotGrowSaysSoAndLeavesNothing) {
  EXPECT_EQ(Shell("ulimit -f 64; exec", "new > /dev/null"), 1);
  EXPECT_THAT(error_, HasSubstr("File too large"));
  EXPECT_FALSE(fs::exists(folder_.Club()));
  EXPECT_EQ(Shell("", "new > /dev/null"), 0) << error_;
  EXPECT_THAT(NamesInClub(), ElementsAre("ClubMembers.mdb"));
}

TEST_F(Signals, AnImportIntoAFileThatMayNotGrowSaysSoAndCanBeRepeated) {
  ASSERT_EQ(Shell("", "new > /dev/null"), 0);
  EXPECT_EQ(Shell("ulimit -f 100; exec", "members import '" + examples_ + "members.csv' > /dev/null"), 1);
  EXPECT_THAT(error_, HasSubstr("File too large"));
  EXPECT_EQ(Shell("", "check --strict > /dev/null"), 0);
  EXPECT_EQ(Shell("", "members import '" + examples_ + "members.csv' > /dev/null"), 0) << error_;
  EXPECT_EQ(Shell("", "check --strict > /dev/null"), 0);
  EXPECT_THAT(NamesInClub(), ElementsAre("ClubMembers.mdb"));
}

TEST_F(Signals, AReaderThatIsGoneEndsAListQuietly) {
  ASSERT_EQ(Shell("", "new > /dev/null"), 0);
  ASSERT_EQ(Shell("", "members import '" + examples_ + "members.csv' > /dev/null"), 0);
  EXPECT_EQ(WithoutReader("members"), kReaderHasEnded);
  EXPECT_THAT(error_, IsEmpty());
}

TEST_F(Signals, AReaderThatIsGoneDoesNotStopAChange) {
  ASSERT_EQ(Shell("", "new > /dev/null"), 0);
  EXPECT_EQ(WithoutReader("members import '" + examples_ + "members.csv'"), kReaderHasEnded);
  EXPECT_THAT(error_, IsEmpty());
  EXPECT_GT(folder_.Query("Select MembershipNumber From Members").size(), 10U);
  EXPECT_THAT(NamesInClub(), ElementsAre("ClubMembers.mdb"));
}

}  // namespace
}  // namespace tavi::host
