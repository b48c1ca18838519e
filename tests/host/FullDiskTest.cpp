// Commands that find the disk full at one of their last changes to a file, when the club's file is closed: what they
// did is stored, in the log beside the file, but a command that could not do all of its work never says that it did.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "SourceDirectory.h"
#include "host/support/ChildProcess.h"
#include "host/support/Command.h"
#include "host/support/SystemCalls.h"
#include "platform/Matchers.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class FullDiskTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::string examples = std::string(TAVI_SOURCE_DIR) + "/examples/club/";
    evening_ = examples + "evenings/2025-09-17.xml";
    Prepare({"new", "--name", "Ashby Bridge Club"});
    Prepare({"members", "import", examples + "members.csv"});
    fs::copy(folder_.Club(), folder_.Path("start"), fs::copy_options::recursive);
  }

  void Prepare(const std::vector<std::string>& arguments) const {
    const Outcome outcome = folder_.Run(arguments);
    ASSERT_EQ(outcome.code, 0) << outcome.error;
  }

  void Refill() const {
    fs::remove_all(folder_.Club());
    fs::copy(folder_.Path("start"), folder_.Club(), fs::copy_options::recursive);
  }

  /// Runs the command with a disk that is full from that call on; says how many calls it made, tells its errors.
  [[nodiscard]] ChildEnd Run(const std::vector<std::string>& arguments, const std::string& input,
                             std::size_t call) const {
    return RunInChild([&](ChildVoice& voice) {
      TroubleAtCall(call, CallTrouble::DiskFull);
      const Outcome outcome = folder_.Run(arguments, input);
      NoTrouble();
      voice.Say(std::to_string(ChangingCalls()));
      voice.Tell(outcome.error);
      if (outcome.code != 0) ::_exit(outcome.code);
    });
  }

  /// The file is closed when its log is gone.
  [[nodiscard]] bool IsClosed() const { return !fs::exists(folder_.ClubFile() + ".redo"); }

  /// Tries the last calls of a command. How often it failed although what it does was stored, as `isStored` says.
  template <typename IsStored>
  std::size_t FillAtTheEnd(const std::vector<std::string>& arguments, const std::string& input, IsStored isStored) {
    Refill();
    const ChildEnd whole = Run(arguments, input, std::string::npos);
    EXPECT_EQ(whole.code, 0) << whole.told;
    EXPECT_TRUE(IsClosed());
    const std::size_t calls = std::stoul(whole.said);
    std::size_t stored = 0;
    for (std::size_t call = calls - std::min(calls, kLastCalls); call < calls; ++call) {
      SCOPED_TRACE("full at call " + std::to_string(call) + " of " + std::to_string(calls));
      Refill();
      const ChildEnd end = Run(arguments, input, call);
      EXPECT_EQ(end.signal, 0);
      if (end.code == 0) {
        EXPECT_TRUE(IsClosed());
        continue;
      }
      EXPECT_EQ(end.code, 1);
      EXPECT_THAT(end.told, HasSubstr("No space left on device"));
      if (isStored(end.told)) ++stored;
    }
    return stored;
  }

  static constexpr std::size_t kLastCalls = 60;
  CommandFolder folder_;
  std::string evening_;
};

TEST_F(FullDiskTest, AtTheCloseAfterScoringIsAnErrorThatSaysWhatIsStored) {
  const std::size_t stored = FillAtTheEnd({"score", evening_}, "", [&](const std::string& error) {
    const bool isThere = folder_.Query("Select Count(*) From Competitions") == std::vector<std::string>{"1"};
    EXPECT_EQ(error.find("it was stored, but the club's file could not be closed") != std::string::npos, isThere)
        << error;
    EXPECT_EQ(error.find("not stored: 1 of 1 file") != std::string::npos, !isThere) << error;
    return isThere;
  });
  EXPECT_GT(stored, 0U);
}

// A search of a club whose stored keys are old brings them up to date first.
TEST_F(FullDiskTest, AtTheCloseAfterASearchThatBroughtKeysUpToDateIsAnError) {
  const std::string keys = "Select Distinct FuzzedLastName From Members Where LastName = 'Holloway'";
  const std::vector<std::string> current = folder_.Query(keys);
  ASSERT_EQ(current.size(), 1U);
  Prepare({"sql", "Update Members Set FuzzedLastName = 'OLD' Where LastName = 'Holloway'"});
  fs::remove_all(folder_.Path("start"));
  fs::copy(folder_.Club(), folder_.Path("start"), fs::copy_options::recursive);
  const std::size_t stored = FillAtTheEnd({"find", "Agnes M Holloway"}, "",
                                          [&](const std::string&) { return folder_.Query(keys) == current; });
  EXPECT_GT(stored, 0U);
}

TEST_F(FullDiskTest, AtTheEndOfASessionOfRequestsIsAnError) {
  const std::string request =
      R"({"jsonrpc": "2.0", "id": 1, "method": "OpenDatabase"})"
      "\n"
      R"({"jsonrpc": "2.0", "id": 2, "method": "AddNewMember", "params": ["Zoe", "", "Quill", 50]})"
      "\n";
  const std::size_t stored = FillAtTheEnd({"rpc"}, request, [&](const std::string&) {
    return folder_.Query("Select FirstName From Members Where LastName = 'Quill'") == std::vector<std::string>{"Zoe"};
  });
  EXPECT_GT(stored, 0U);
}

}  // namespace
}  // namespace tavi::host
