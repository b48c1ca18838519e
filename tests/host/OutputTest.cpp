// What becomes of a command whose output cannot be written.

#include <gtest/gtest.h>

#include <sstream>
#include <streambuf>

#include "SourceDirectory.h"
#include "host/CommandLine.h"
#include "host/support/Command.h"
#include "platform/Matchers.h"

namespace tavi::host {
namespace {

using testing::HasSubstr;

/// Takes nothing once some bytes have been written.
class FullBuffer : public std::streambuf {
 public:
  explicit FullBuffer(std::size_t room) : room_(room) {}

 protected:
  int_type overflow(int_type character) override {
    if (room_ == 0) return traits_type::eof();
    --room_;
    return traits_type::not_eof(character);
  }

 private:
  std::size_t room_;
};

class OutputTest : public ::testing::Test {
 protected:
  OutputTest() {
    EXPECT_EQ(folder_.Run({"new", "--name", "Club"}).code, 0);
    EXPECT_EQ(folder_.Run({"members", "import", members_}).code, 0);
  }

  Outcome RunFull(std::vector<std::string> arguments, std::size_t room, std::error_code reason = {},
                  const std::string& input = "") {
    FullBuffer buffer(room);
    std::istringstream in(input);
    std::ostream out(&buffer);
    std::ostringstream error;
    arguments.insert(arguments.begin(), {"--db", folder_.Club()});
    Terminal terminal{in, out, error};
    terminal.outputFailure = [reason] { return reason; };
    Outcome outcome;
    outcome.code = RunCommandLine(std::move(arguments), terminal);
    outcome.error = error.str();
    return outcome;
  }

  CommandFolder folder_;
  std::string members_ = folder_.Write("members.csv", "club_number,first,last\n1,Ann,Lee\n2,Bob,Ray\n");
};

TEST_F(OutputTest, OfEveryCommandThatCannotBeWrittenIsAnError) {
  const std::vector<std::vector<std::string>> commands = {{"members"},
                                                          {"pairs"},
                                                          {"find", "Ann Lee"},
                                                          {"handicaps"},
                                                          {"info"},
                                                          {"check"},
                                                          {"sql", "Select * From Members"},
                                                          {"--json", "info"},
                                                          {"members", "import", members_},
                                                          {"--help"},
                                                          {"members", "import", "--dry-run", members_},
                                                          {"compact"},
                                                          {"recover", "--replace", folder_.Path("old.mdb")}};
  std::filesystem::copy_file(folder_.ClubFile(), folder_.Path("old.mdb"));
  for (const auto& command : commands) {
    for (const std::size_t room : {0U, 3U}) {
      const Outcome outcome = RunFull(command, room, std::make_error_code(std::errc::no_space_on_device));
      EXPECT_EQ(outcome.code, 1) << command[0];
      EXPECT_THAT(outcome.error, HasSubstr("tavi: the output could not be written: No space left on device"))
          << command[0];
    }
  }
}

TEST_F(OutputTest, ForAReaderThatHasEndedIsNoErrorToTellOf) {
  const Outcome outcome = RunFull({"members"}, 3, std::make_error_code(std::errc::broken_pipe));
  EXPECT_EQ(outcome.code, 141);
  EXPECT_EQ(outcome.error, "");
}

TEST_F(OutputTest, OfNoCommandMayBeMissingInAPipedRun) {
  const Outcome outcome = RunFull({"sql"}, 3, {}, "Select * From Members;\nDelete From Members;\n");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(folder_.Query("Select Count(*) From Members"), (std::vector<std::string>{"2"}));
}

#ifdef __linux__
TEST_F(OutputTest, ToAFullDiskOrAClosedPipeEndsTheProgramAsItShould) {
  const auto run = [&](const std::string& more) {
    return RunProgram(std::string(TAVI_PROGRAM) + " --db " + folder_.Club() + " members " + more).text;
  };
  EXPECT_EQ(run(">/dev/full 2>&1; echo $?"), "1\n");
  EXPECT_THAT(run("2>&1 >/dev/full"), HasSubstr("tavi: the output could not be written: No space left on device"));
  EXPECT_EQ(run("2>&1 | true; echo done"), "done\n");
  EXPECT_THAT(run("2>&1 >&-"), HasSubstr("tavi: the output could not be written: "));
}
#endif

}  // namespace
}  // namespace tavi::host
