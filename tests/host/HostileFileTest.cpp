// Files that are damaged in two places at once, by accident or intent: every command answers or refuses, in bounded
// time and memory, whatever links, counts and lengths say.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "SourceDirectory.h"
#include "access/file/Bytes.h"
#include "access/file/Format.h"
#include "access/file/Page.h"
#include "access/file/support/LongRun.h"
#include "access/file/support/Mutation.h"
#include "access/file/support/StructureDamage.h"
#include "host/CommandLine.h"
#include "host/support/ChildProcess.h"
#include "host/support/Command.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;
using access::test::Random;
using Arguments = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

constexpr double kMostSeconds = 10;
#ifdef __SANITIZE_ADDRESS__
// The address sanitizer keeps freed memory for a while, and is slow.
constexpr std::uint64_t kMostMegabytes = 4096;
#else
constexpr std::uint64_t kMostMegabytes = 256;
#endif

struct Consumption {
  double seconds = 0;
  std::uint64_t megabytes = 0;  ///< at most, since the process began
};

Consumption Consumed() {
  struct rusage usage {};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return {seconds(usage.ru_utime) + seconds(usage.ru_stime), static_cast<std::uint64_t>(usage.ru_maxrss) / 1024};
}

/// Two damages, often on one page, most of them to what steers a reader.
std::string DamageTwice(Bytes& bytes, Random& random) {
  std::size_t page = 0;
  const auto damage = [&] {
    if (random.Below(5) == 0) return access::test::DamageFile(bytes, random);
    return access::test::DamageStructure(bytes, page, random);
  };
  std::string text = damage();
  if (random.Below(2) == 0) page = 0;
  return text + "; " + damage();
}

class HostileFile : public ::testing::Test {
 protected:
  /// Runs all commands on damaged copies of a file.
  void UseDamagedCopies(const std::string& name, const Bytes& sound, std::size_t copies, std::uint32_t seed) {
    Random random(seed);
    Consumption most;
    for (std::size_t copy = 0; copy < copies; ++copy) {
      Bytes hurt = sound;
      const std::string damage = DamageTwice(hurt, random);
      SCOPED_TRACE(name + ", copy " + std::to_string(copy) + " of seed " + std::to_string(seed) + ": " + damage);
      most.megabytes = std::max(most.megabytes, UseInBounds(hurt));
      if (HasFailure() && !wasKept_) KeepCopy(hurt, name, copy);
    }
    std::cout << name << ": " << copies << " copies, " << most.megabytes << " MiB at most\n";
  }

  /// Runs all commands on a file; how many megabytes that took at most.
  std::uint64_t UseInBounds(const Bytes& hurt) const {
    Prepare(hurt);
    ChildLimits limits;
    limits.addressSpace = std::uint64_t{1} << 30U;
    const ChildEnd end = RunInChild([&](ChildVoice& voice) { UseFile(voice); }, limits);
    EXPECT_EQ(end.signal, 0) << "ended in: " << end.said;
    EXPECT_EQ(end.code, 0) << end.said << end.told;
    EXPECT_EQ(end.told, "");
    return end.peakBytes >> 20U;
  }

  [[nodiscard]] Bytes OwnFile() const {
    const Arguments commands[] = {{"new", "--name", "Ashby Bridge Club"},
                                  {"members", "import", examples_ + "members.csv"},
                                  {"pairs", "import", examples_ + "pairs.csv"},
                                  {"score", FirstEvening(examples_ + "evenings")},
                                  {"sql", "Update Members Set Notes = '" + std::string(5000, 'n') + "', Address = '" +
                                              std::string(900, 'a') + "' Where MembershipNumber Mod 7 = 0"}};
    for (const Arguments& command : commands) {
      const Outcome outcome = folder_.Run(command);
      EXPECT_EQ(outcome.code, 0) << outcome.error;
    }
    return Content(folder_.ClubFile());
  }
  [[nodiscard]] static Bytes Content(const std::string& path) {
    const std::string bytes = ReadFile(path);
    return {bytes.begin(), bytes.end()};
  }

  CommandFolder folder_;
  std::string examples_ = std::string(TAVI_SOURCE_DIR) + "/examples/club/";

 private:
  [[nodiscard]] static std::string FirstEvening(const std::string& folder) {
    std::vector<std::string> files;
    for (const auto& entry : fs::directory_iterator(folder)) files.push_back(entry.path().string());
    return *std::min_element(files.begin(), files.end());
  }

  void Prepare(const Bytes& hurt) const {
    for (const char* name : {"hurt", "saved", "dump"}) fs::remove_all(folder_.Path(name));
    fs::create_directory(folder_.Path("hurt"));
    folder_.Write("hurt/ClubMembers.mdb", std::string(hurt.begin(), hurt.end()));
  }

  void UseFile(ChildVoice& voice) const {
    const std::string file = folder_.Path("hurt/ClubMembers.mdb");
    const std::string club = folder_.Path("hurt");
    const std::string table = "Members";
    for (const Arguments& command : {
             Arguments{"check", file},
             Arguments{"check", "--strict", file},
             Arguments{"dump", file, folder_.Path("dump")},
             Arguments{"sql", "--file", file, "Select * From Members"},
             Arguments{"sql", "--file", file, "Select * From Members Order By LastName Desc"},
             Arguments{"sql", "--file", file,
                       "Select * From Results Inner Join Competitions On Results.Competition = Competitions.ID"},
             Arguments{"recover", file, "--db", folder_.Path("saved")},
             Arguments{"info", "--db", club},
             Arguments{"compact", file},
             Arguments{"members", "--all", "--db", club},
             Arguments{"pairs", "--all", "--db", club},
             Arguments{"find", "Anne", "Smith", "--db", club},
             Arguments{"handicaps", "--recalculate", "--db", club},
             Arguments{"members", "import", examples_ + "members.csv", "--db", club},
             Arguments{"pairs", "import", examples_ + "pairs.csv", "--db", club},
             Arguments{"score", FirstEvening(examples_ + "evenings"), "--db", club},
             Arguments{"sql", "--file", file, "Delete From Members"},
             Arguments{"recover", "--replace", folder_.ClubFile(), "--db", club},
         }) {
      RunCommand(voice, command);
    }
  }

  static void RunCommand(ChildVoice& voice, const Arguments& command) {
    voice.Say(command.front());
    const Consumption before = Consumed();
    std::istringstream nothing;
    std::ofstream out("/dev/null");
    std::ostringstream error;
    const int code = RunCommandLine(command, Terminal{nothing, out, error});
    const Consumption after = Consumed();
    const double seconds = after.seconds - before.seconds;
    if (code < 0 || code > 2) voice.Tell(command.front() + " ended with " + std::to_string(code) + "\n");
    if (error.str().find("std::") != std::string::npos || error.str().find("bad_alloc") != std::string::npos)
      voice.Tell(command.front() + " said " + error.str() + "\n");
    if (seconds > kMostSeconds) voice.Tell(command.front() + " took " + std::to_string(seconds) + " s\n");
    if (after.megabytes > kMostMegabytes && before.megabytes <= kMostMegabytes)
      voice.Tell(command.front() + " took " + std::to_string(after.megabytes) + " MiB\n");
  }

  void KeepCopy(const Bytes& hurt, const std::string& name, std::size_t copy) {
    const std::string path =
        (fs::temp_directory_path() / ("hostile-" + name + "-" + std::to_string(copy) + ".mdb")).string();
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(hurt.data()), static_cast<std::streamsize>(hurt.size()));
    std::cout << "the first copy that failed is kept in " << path << '\n';
    wasKept_ = true;
  }

  bool wasKept_ = false;
};

/// A club of 4096 members more, the first of whom has notes of 1 MB; those of the others begin with kMark.
class CrowdedFile : public HostileFile {
 protected:
  static constexpr const char* kMark = "little";

  [[nodiscard]] Bytes CrowdedClub() const {
    Run({"new", "--name", "Ashby Bridge Club"});
    const std::string columns = "(MembershipNumber, FirstName, LastName, Notes)";
    Run({"sql", "Insert Into Members " + columns + " Values (1, 'Ann', 'Lee', '" + kMark + "')"});
    for (int count = 1; count < 4096; count *= 2) {
      Run({"sql", "Insert Into Members " + columns + " Select MembershipNumber + " + std::to_string(count) +
                      ", FirstName, LastName, Notes From Members"});
    }
    Run({"sql", "Update Members Set Notes = '" + std::string(32'768, 'm') + "' Where MembershipNumber = 1"});
    for (int size = 32'768; size < (1 << 20); size *= 2)
      Run({"sql", "Update Members Set Notes = Notes & Notes Where MembershipNumber = 1"});
    return Content(folder_.ClubFile());
  }

  /// Gives all members the notes of the first one; how many were changed.
  static std::size_t ShareLongNotes(Bytes& bytes) {
    namespace layout = access::format::long_value;
    const std::string mark = "\xff\xfe" + std::string(kMark);
    const std::size_t longest = FindLongNotes(bytes);
    std::size_t count = 0;
    const std::string_view text = AsText(bytes);
    for (std::size_t at = text.find(mark); at != std::string_view::npos; at = text.find(mark, at + 1)) {
      std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(longest), layout::kDescriptorSize,
                  bytes.begin() + static_cast<std::ptrdiff_t>(at - layout::kDescriptorSize));
      ++count;
    }
    return count;
  }

 private:
  void Run(const Arguments& command) const {
    const Outcome outcome = folder_.Run(command);
    ASSERT_EQ(outcome.code, 0) << outcome.error;
  }
  /// A text is searched by the library, at once; a test's own loops over megabytes are not optimized.
  static std::string_view AsText(const Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
  }
  /// The place of the descriptor of 2 MB in UTF-16 on pages of their own.
  static std::size_t FindLongNotes(const Bytes& bytes) {
    namespace layout = access::format::long_value;
    constexpr std::uint32_t kSize = 2U << 20U;
    std::string wanted;
    for (unsigned shift = 0; shift < 32; shift += 8) {
      wanted += static_cast<char>(((kSize | layout::kFormChain) >> shift) & 0xFFU);
    }
    const std::string_view text = AsText(bytes);
    for (std::size_t at = text.find(wanted); at != std::string_view::npos; at = text.find(wanted, at + 1)) {
      if (at + layout::kDescriptorSize > bytes.size()) break;
      const std::size_t page = access::GetLittle<std::uint32_t>(bytes, at + layout::kPointerOffset) >> 8U;
      const std::size_t owner = page * access::kPageSize + access::format::data::kOwnerOffset;
      const bool leadsToLongValue = owner < bytes.size() && access::GetLittle<std::uint32_t>(bytes, owner) ==
                                                                access::format::data::kOwnerLongValues;
      if (leadsToLongValue) return at;
    }
    ADD_FAILURE() << "no long notes found";
    return 0;
  }
};

TEST_F(CrowdedFile, WhoseRowsShareOneLongValueIsAnsweredOrRefusedByEveryCommandInBounds) {
  Bytes bytes = CrowdedClub();
  ASSERT_LT(bytes.size(), std::size_t{10} << 20U);
  ASSERT_EQ(ShareLongNotes(bytes), 4095U);
  std::cout << bytes.size() << " bytes, " << UseInBounds(bytes) << " MiB at most\n";
}

#ifndef __SANITIZE_ADDRESS__
TEST_F(CrowdedFile, AnAnswerThatNeedsMoreMemoryThanThereIsIsRefusedInWords) {
  static_cast<void>(CrowdedClub());
  ChildLimits limits;
  limits.addressSpace = std::uint64_t{256} << 20U;
  const ChildEnd end = RunInChild(
      [&](ChildVoice& voice) {
        const Outcome outcome = folder_.Run({"sql", "Select a.LastName From Members As a, Members As b"});
        voice.Tell(std::to_string(outcome.code) + " " + outcome.error);
      },
      limits);
  EXPECT_EQ(end.signal, 0);
  EXPECT_EQ(end.told.substr(0, 2), "1 ");
  EXPECT_NE(end.told.find("not enough memory"), std::string::npos) << end.told;
}
#endif

TEST_F(HostileFile, OfAClubIsAnsweredOrRefusedByEveryCommandInBounds) {
  UseDamagedCopies("club", OwnFile(), access::test::Lengthened(30), access::test::SeedOr(2003));
}

TEST_F(HostileFile, OfAnotherProgramIsAnsweredOrRefusedByEveryCommandInBounds) {
  const fs::path folder = fs::path(TAVI_SAMPLE_FILES) / "access-files";
  if (!fs::exists(folder)) GTEST_SKIP() << "the sample files are not beside this checkout";
  std::vector<std::string> paths;
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.path().extension() == ".mdb") paths.push_back(entry.path().string());
  std::sort(paths.begin(), paths.end());
  for (const std::string& path : paths)
    UseDamagedCopies(fs::path(path).stem().string(), Content(path), access::test::Lengthened(1),
                     access::test::SeedOr(2003));
}

}  // namespace
}  // namespace tavi::host
