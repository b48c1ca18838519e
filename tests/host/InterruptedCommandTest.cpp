// Commands that are killed at, or in the middle of, every change that they make to a file, or find the disk full from
// there on. The same command then ends as if it had never been interrupted, and leaves nothing else behind.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <utility>

#include "SourceDirectory.h"
#include "access/file/support/LongRun.h"
#include "host/CommandLine.h"
#include "host/support/ChildProcess.h"
#include "host/support/Command.h"
#include "host/support/SystemCalls.h"
#include "platform/Matchers.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using Arguments = std::vector<std::string>;
/// All that a club's folder holds: contents of its files by name, databases as the text of all their tables.
using Contents = std::map<std::string, std::string>;

/// How often a whole command is interrupted at least; all places are taken when there are fewer.
constexpr std::size_t kInterruptions = 10;
constexpr std::size_t kLastCalls = 8;

class InterruptedCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory(start_);
    examples_ = std::string(TAVI_SOURCE_DIR) + "/examples/club/";
  }

  /// Runs a command for the preparation on the club of that folder.
  void Prepare(const fs::path& club, const Arguments& arguments) const {
    const Outcome outcome = folder_.RunIn(club.string(), arguments);
    ASSERT_EQ(outcome.code, 0) << outcome.error;
  }

  /// Interrupts the command, which begins with a copy of the folder `start_`, in every way and at every place, or at
  /// enough of them.
  void InterruptEverywhere(const Arguments& arguments) {
    Refill();
    const Contents before = Read();
    const ChildEnd whole = Run(arguments, std::string::npos, CallTrouble::Kill);
    ASSERT_EQ(whole.signal, 0);
    ASSERT_EQ(whole.code, 0) << whole.told;
    const std::size_t calls = std::stoul(whole.said);
    const Contents expected = Read();
    const std::size_t step = std::max<std::size_t>(1, calls / access::test::Lengthened(kInterruptions));
    // At the end a command is done but for its traces: none of the last calls is passed over.
    const auto after = [&](std::size_t call) {
      const std::size_t last = calls - std::min(calls, kLastCalls);
      return call < last ? std::min(call + step, last) : call + 1;
    };
    std::size_t interruptions = 0;
    for (const CallTrouble trouble : {CallTrouble::Kill, CallTrouble::KillInTheMiddle, CallTrouble::DiskFull}) {
      const std::size_t first = trouble == CallTrouble::Kill ? 0 : interruptions % step;
      for (std::size_t call = first; call < calls && !HasFailure(); call = after(call)) {
        SCOPED_TRACE("trouble " + std::to_string(static_cast<int>(trouble)) + " at call " + std::to_string(call) +
                     " of " + std::to_string(calls));
        Refill();
        if (!Interrupt(arguments, call, trouble, before)) continue;
        ++interruptions;
        const ChildEnd again = Run(arguments, std::string::npos, CallTrouble::Kill);
        EXPECT_EQ(again.signal, 0);
        EXPECT_EQ(again.code, 0) << again.told;
        ExpectSame(Read(), expected);
        EXPECT_EQ(OthersLeft(), std::vector<std::string>());
      }
    }
    EXPECT_GT(interruptions, 10U);
    std::cout << interruptions << " interruptions of " << calls << " calls\n";
  }

  void Refill() const {
    fs::remove_all(folder_.Path("club"));
    fs::copy(start_, folder_.Path("club"), fs::copy_options::recursive);
    if (fs::is_empty(start_)) fs::remove(folder_.Path("club"));
  }

  /// Runs the command in a process of its own; says how many calls it made, tells its errors.
  [[nodiscard]] ChildEnd Run(const Arguments& arguments, std::size_t call, CallTrouble trouble) const {
    return RunInChild([&](ChildVoice& voice) {
      // What the command says goes into a file, so that saying it is one of the calls.
      std::ofstream file(folder_.Path("said"));
      std::ostringstream text;
      std::istringstream in;
      std::ostringstream error;
      std::ostream& out = trouble == CallTrouble::DiskFull ? static_cast<std::ostream&>(text) : file;
      Arguments all{"--db", folder_.Club(), "--today", "2026-01-15"};
      all.insert(all.end(), arguments.begin(), arguments.end());
      TroubleAtCall(call, trouble);
      const int code = RunCommandLine(all, Terminal{in, out, error});
      NoTrouble();
      voice.Say(std::to_string(ChangingCalls()));
      voice.Tell(error.str());
      if (code != 0) ::_exit(code);
    });
  }

  CommandFolder folder_;
  fs::path start_ = folder_.Path("start");
  std::string examples_;
  /// Whether a full disk must leave the folder as it was.
  bool isWholeOrNothing_ = true;

 protected:
  /// False when the command came to its end all the same: its last calls may do without room, and it makes some fewer
  /// when it takes less time, because flushes begin by the clock.
  bool Interrupt(const Arguments& arguments, std::size_t call, CallTrouble trouble, const Contents& before) {
    const ChildEnd end = Run(arguments, call, trouble);
    if (end.signal == 0 && end.code == 0) return false;
    if (trouble != CallTrouble::DiskFull) {
      EXPECT_EQ(end.signal, SIGKILL);
      return true;
    }
    EXPECT_EQ(end.signal, 0);
    EXPECT_NE(end.told.find("No space left on device"), std::string::npos) << end.told;
    if (isWholeOrNothing_) {
      ExpectSame(Read(), before);
      EXPECT_EQ(OthersLeft(), std::vector<std::string>());
    }
    return true;
  }

  /// Files that are no databases: work that was left. Logs belong to their databases until the next run.
  [[nodiscard]] std::vector<std::string> OthersLeft() const {
    std::vector<std::string> names;
    if (!fs::exists(folder_.Club())) return names;
    for (const auto& entry : fs::directory_iterator(folder_.Club())) {
      if (entry.path().extension() != ".mdb") names.push_back(entry.path().filename().string());
    }
    return names;
  }

  [[nodiscard]] Contents Read() {
    Contents contents;
    if (!fs::exists(folder_.Club())) return contents;
    for (const auto& entry : fs::directory_iterator(folder_.Club())) {
      if (entry.path().extension() == ".mdb") ReadDatabase(entry.path(), contents);
    }
    return contents;
  }

  /// Adds what a sound database holds. The same bytes are read and checked once, unless a log is to be brought in.
  void ReadDatabase(const fs::path& path, Contents& contents) {
    const bool hasLog = fs::exists(path.string() + ".redo");
    const std::pair key(path.filename().string(), hasLog ? "" : ReadFile(path));
    auto known = read_.find(key);
    if (hasLog || known == read_.end()) known = read_.insert_or_assign(key, Dumped(path)).first;
    contents.insert(known->second.begin(), known->second.end());
  }

  [[nodiscard]] Contents Dumped(const fs::path& path) const {
    Contents contents;
    const fs::path dump = folder_.Path("dump");
    fs::remove_all(dump);
    const Outcome outcome = folder_.Run({"dump", path.string(), dump.string()});
    EXPECT_EQ(outcome.code, 0) << outcome.error;
    EXPECT_EQ(folder_.Run({"check", "--strict", path.string()}).code, 0) << path;
    const std::string name = path.filename().string();
    contents[name] = "";
    for (const auto& entry : fs::directory_iterator(dump)) {
      contents[name + "/" + entry.path().filename().string()] = ReadFile(entry.path());
    }
    return contents;
  }

  static void ExpectSame(const Contents& found, const Contents& expected) {
    for (const auto& [name, content] : expected) {
      const auto other = found.find(name);
      EXPECT_TRUE(other != found.end()) << name << " is missing";
      if (other == found.end() || other->second == content) continue;
      const auto place = std::mismatch(content.begin(), content.end(), other->second.begin(), other->second.end());
      ADD_FAILURE() << name << " differs from byte " << place.first - content.begin()
                    << " on: " << other->second.substr(static_cast<std::size_t>(place.first - content.begin()), 100);
    }
    for (const auto& [name, content] : found) EXPECT_TRUE(expected.contains(name)) << name << " is too much";
  }

  std::map<std::pair<std::string, std::string>, Contents> read_;  // by name and bytes of the file
};

TEST_F(InterruptedCommand, NewMakesTheClubOrNothing) {
  InterruptEverywhere({"new", "--name", "Ashby Bridge Club", "--ebu", "123456"});
}

TEST_F(InterruptedCommand, FoldersThatNewMakesAreAsDurableAsTheFile) {
  const fs::path outer = folder_.Path("outer");
  TroubleAtCall(std::string::npos, CallTrouble::Kill);
  const Outcome outcome = folder_.RunIn((outer / "inner").string(), {"new"});
  NoTrouble();
  ASSERT_EQ(outcome.code, 0) << outcome.error;
  const std::string root = fs::canonical(outer).parent_path().string();
  EXPECT_THAT(FlushedPaths(), IsSupersetOf({root, root + "/outer", root + "/outer/inner"}));
}

TEST_F(InterruptedCommand, NewCanBeRepeatedUntilSomethingIsStored) {
  const Arguments made = {"new", "--name", "Ashby Bridge Club", "--ebu", "123456"};
  Prepare(start_, made);
  Refill();
  const Contents before = Read();
  EXPECT_EQ(Run(made, std::string::npos, CallTrouble::Kill).code, 0);
  ExpectSame(Read(), before);
  for (const Arguments& other :
       {Arguments{"new", "--name", "Ashby Bridge Club"},
        Arguments{"new", "--name", "Other Bridge Club", "--ebu", "123456"}, Arguments{"new"}}) {
    EXPECT_THAT(Run(other, std::string::npos, CallTrouble::Kill).told, HasSubstr("exists already"));
  }
  Prepare(folder_.Club(), {"members", "import", examples_ + "members.csv"});
  EXPECT_THAT(Run(made, std::string::npos, CallTrouble::Kill).told, HasSubstr("exists already"));
}

class InterruptedRecovery : public InterruptedCommand {
 protected:
  void SetUp() override {
    InterruptedCommand::SetUp();
    Prepare(old_, {"new", "--name", "Old Club"});
    Prepare(old_, {"members", "import", examples_ + "members.csv"});
  }
  fs::path old_ = folder_.Path("old");
};

TEST_F(InterruptedRecovery, RecoverMakesTheClubOrNothing) {
  InterruptEverywhere({"recover", (old_ / "ClubMembers.mdb").string()});
}

TEST_F(InterruptedRecovery, CanBeRepeatedWhenTheRepetitionWasStoppedToo) {
  const Arguments recover = {"recover", (old_ / "ClubMembers.mdb").string()};
  Refill();
  EXPECT_EQ(Run(recover, std::string::npos, CallTrouble::Kill).code, 0);
  const Contents expected = Read();
  for (const std::size_t call : {std::size_t{5}, std::size_t{60}, std::size_t{110}, std::string::npos}) {
    SCOPED_TRACE(call);
    static_cast<void>(Run(recover, call, CallTrouble::Kill));
    const ChildEnd again = Run(recover, std::string::npos, CallTrouble::Kill);
    EXPECT_EQ(again.code, 0) << again.told;
    ExpectSame(Read(), expected);
    EXPECT_EQ(OthersLeft(), std::vector<std::string>());
  }
}

TEST_F(InterruptedRecovery, IsRefusedWhereTheClubHoldsOtherData) {
  Prepare(start_, {"new", "--name", "Present Club"});
  Prepare(start_, {"members", "import", examples_ + "members.csv"});
  Refill();
  const Contents before = Read();
  const ChildEnd end = Run({"recover", (old_ / "ClubMembers.mdb").string()}, std::string::npos, CallTrouble::Kill);
  EXPECT_EQ(end.code, 2);
  EXPECT_THAT(end.told, HasSubstr("holds data already"));
  ExpectSame(Read(), before);
  EXPECT_EQ(OthersLeft(), std::vector<std::string>());
}

TEST_F(InterruptedRecovery, RecoverReplacesTheClubOrLeavesIt) {
  Prepare(start_, {"new", "--name", "Present Club"});
  Prepare(start_, {"members", "import", examples_ + "members.csv"});
  InterruptEverywhere({"recover", "--replace", (old_ / "ClubMembers.mdb").string()});
}

class InterruptedClub : public InterruptedCommand {
 protected:
  void SetUp() override {
    InterruptedCommand::SetUp();
    Prepare(start_, {"new", "--name", "Ashby Bridge Club"});
  }
  void AddMembers() const {
    Prepare(start_, {"members", "import", examples_ + "members.csv"});
    Prepare(start_, {"pairs", "import", examples_ + "pairs.csv"});
  }
};

TEST_F(InterruptedClub, CompactKeepsEveryRow) {
  AddMembers();
  Prepare(start_, {"sql", "Delete From Members Where MembershipNumber Mod 2 = 0"});
  InterruptEverywhere({"compact"});
}

TEST_F(InterruptedClub, CompactLeavesNoCopyThatOthersMayRead) {
  AddMembers();
  fs::permissions(start_ / "ClubMembers.mdb", fs::perms::owner_read | fs::perms::owner_write);
  std::size_t call = 0;
  for (int signal = SIGKILL; signal == SIGKILL; ++call) {
    Refill();
    signal = Run({"compact"}, call, CallTrouble::Kill).signal;
    for (const auto& entry : fs::directory_iterator(folder_.Club())) {
      if (entry.file_size() == 0) continue;
      const fs::perms others = entry.status().permissions() & (fs::perms::group_all | fs::perms::others_all);
      EXPECT_EQ(others, fs::perms::none) << entry.path() << " after call " << call;
    }
  }
  EXPECT_GT(call, 5U);
}

TEST_F(InterruptedClub, AnImportOfMembersCanBeRepeated) {
  isWholeOrNothing_ = false;
  InterruptEverywhere({"members", "import", examples_ + "members.csv"});
}

TEST_F(InterruptedClub, AnImportOfPairsCanBeRepeated) {
  isWholeOrNothing_ = false;
  Prepare(start_, {"members", "import", examples_ + "members.csv"});
  InterruptEverywhere({"pairs", "import", examples_ + "pairs.csv"});
}

/// A club whose file an older version made: columns are missing, kinds of competitions are letters, and awards that
/// were stored before there were colours have none.
class InterruptedFirstOpen : public InterruptedClub {
 protected:
  void SetUp() override {
    InterruptedClub::SetUp();
    AddMembers();
    for (const char* statement :
         {"Alter Table Members Drop Column Sex", "Alter Table Members Drop Column Stratum",
          "Alter Table MasterPoints Drop Column SessionNo", "Alter Table Competitions Drop Column IsExternal",
          "Alter Table Competitions Add Column ExternalType Text (1)",
          "Alter Table Settings Add Column DirectCreditMPs Bit",
          "Insert Into Competitions (CompetitionName, ExternalType) Values ('Old Pairs', 'P')",
          "Insert Into Competitions (CompetitionName, ExternalType) Values ('Old Teams', 'T')",
          "Insert Into MasterPoints (MembershipNumber, MasterPoints, Colour) Values (1, 24, Null)"}) {
      Prepare(start_, {"sql", statement});
    }
  }
};

TEST_F(InterruptedFirstOpen, GivesAnOlderFileItsColumnsDefaultsAndConversionsAllTheSame) {
  isWholeOrNothing_ = false;
  InterruptEverywhere({"members"});
  EXPECT_THAT(folder_.Query("Select Distinct Sex, Stratum From Members"), ElementsAre("0\t0"));
  EXPECT_THAT(folder_.Query("Select IsTeams, IsExternal From Competitions Order By ID"),
              ElementsAre("no\tyes", "yes\tyes"));
  EXPECT_THAT(folder_.Query("Select SessionNo, Colour From MasterPoints"), ElementsAre("-1\t-1"));
}

class InterruptedScoring : public InterruptedClub {
 protected:
  void SetUp() override {
    InterruptedClub::SetUp();
    AddMembers();
    isWholeOrNothing_ = false;
  }
  /// The first evenings of the example's season.
  [[nodiscard]] Arguments Evenings(std::size_t count) const {
    std::vector<std::string> evenings;
    for (const auto& entry : fs::directory_iterator(examples_ + "evenings")) evenings.push_back(entry.path().string());
    std::sort(evenings.begin(), evenings.end());
    Arguments arguments{"score"};
    arguments.insert(arguments.end(), evenings.begin(), evenings.begin() + static_cast<std::ptrdiff_t>(count));
    return arguments;
  }
};

TEST_F(InterruptedScoring, OfEveningsCanBeRepeated) {
  InterruptEverywhere(Evenings(2));
}

}  // namespace
}  // namespace tavi::host
