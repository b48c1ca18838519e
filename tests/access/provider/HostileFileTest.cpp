// Files with wrong bytes, by accident or intent: every request is answered or refused with an error that says
// something, after a bounded number of page reads and without eating the memory.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "SourceDirectory.h"
#include "access/catalog/Check.h"
#include "access/file/Pager.h"
#include "access/file/support/LongRun.h"
#include "access/file/support/Mutation.h"
#include "access/provider/AccessProvider.h"
#include "access/provider/support/Evening.h"
#include "access/provider/support/FileUse.h"
#include "access/provider/support/Inspection.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

// A damaged file may be read this much more often than the sound one: a lost index makes scans of what were look-ups.
constexpr std::uint64_t kReadsMore = 10;
constexpr long kMegabytesMore = 300;
#ifdef __SANITIZE_ADDRESS__
constexpr bool kAddressesAreSanitized = true;
#else
constexpr bool kAddressesAreSanitized = false;
#endif

long MegabytesAtMost() {
  struct rusage usage {};
  ::getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss / 1024;
}

void UseDamagedFiles(const Bytes& sound, const std::string& name, std::size_t mutants, std::uint32_t seed) {
  constexpr std::uint64_t kNoLimit = ~std::uint64_t{0};
  const Use whole = UseFile(sound, kNoLimit);
  EXPECT_GT(whole.answers, 0u) << name;
  const long before = MegabytesAtMost();
  std::uint64_t most = 0;
  std::size_t refused = 0;
  Random random(seed);
  for (std::size_t mutant = 0; mutant < mutants; ++mutant) {
    Bytes hurt = sound;
    std::string damage = DamageFile(hurt, random);
    if (random.Below(3) == 0) damage += ", " + DamageFile(hurt, random);
    SCOPED_TRACE(name + ", mutant " + std::to_string(mutant) + " of seed " + std::to_string(seed) + ": " + damage);
    try {
      const Use use = UseFile(hurt, kReadsMore * whole.pagesRead);
      most = std::max(most, use.pagesRead);
      refused += use.refusals > whole.refusals ? 1U : 0U;
    } catch (const std::exception& exception) {
      ADD_FAILURE() << exception.what();
    }
  }
  // The address sanitizer keeps freed memory for a while.
  if (!kAddressesAreSanitized) {
    EXPECT_LT(MegabytesAtMost() - before, kMegabytesMore) << name;
  }
  std::cout << name << ": " << mutants << " mutants, " << refused << " with more refusals than the sound file's "
            << whole.refusals << " of " << whole.answers << "; " << most << " page reads at most, " << whole.pagesRead
            << " of the sound one\n";
}

TEST(HostileFile, OfOurOwnMakingIsAnsweredOrRefused) {
  UseDamagedFiles(MakeFileOfEverything(), "own file", Lengthened(1000), SeedOr(97));
}

TEST(HostileFile, OfAnotherProgramIsAnsweredOrRefused) {
  const auto folder = std::filesystem::path(TAVI_SAMPLE_FILES) / "access-files";
  if (!std::filesystem::exists(folder)) GTEST_SKIP() << "the sample files are not beside this checkout";
  constexpr std::uintmax_t kSmall = 300000;
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".mdb" && entry.file_size() < kSmall) paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  for (const auto& path : paths) {
    std::ifstream file(path, std::ios::binary);
    const Bytes bytes{std::istreambuf_iterator<char>(file), {}};
    UseDamagedFiles(bytes, path.filename().string(), Lengthened(24), SeedOr(97));
  }
}

// The log of an evening that ended with a crash, damaged: what is found is the state after some whole statement.
TEST(HostileLog, LeavesAStateOfTheEveningOrIsSetAside) {
  const std::uint32_t seed = SeedOr(1998);
  const std::vector<EveningStep> steps = MakeEvening(seed, 60);
  const std::vector<std::uint64_t> digests = RehearseEvening(steps);
  const auto memory = NewEveningFile();
  const auto provider = MakeAccessProvider(memory, std::make_shared<EveningClock>(), {});
  auto connection = provider->Open(kEveningSource);
  for (const EveningStep& step : steps) RunStep(*connection, step);
  const std::string logPath = std::string(kEveningPath) + ".redo";
  const Bytes log = memory->Contents(logPath);
  std::set<std::uint64_t> found;
  Random random(seed);
  for (std::size_t mutant = 0; mutant < Lengthened(300); ++mutant) {
    SCOPED_TRACE("mutant " + std::to_string(mutant) + " of seed " + std::to_string(seed));
    const auto hurt = memory->AfterCrash(CrashKind::Kept, 0);
    Bytes bytes = log;
    if (mutant % 2 == 0) {
      DamageFile(bytes, random);
    } else {
      Mutate(bytes, log, random);
    }
    hurt->SetContents(logPath, bytes);
    try {
      Database database(Pager::Open(hurt, kEveningPath, {}));
      const std::uint64_t digest = DigestOf(database);
      EXPECT_TRUE(std::find(digests.begin(), digests.end(), digest) != digests.end());
      EXPECT_EQ(CheckDatabase(database, CheckKind::Strict), std::vector<std::string>());
      found.insert(digest);
    } catch (const Error& error) {
      // The open that met a log which is set aside; the next one works.
      EXPECT_NE(error.Description().find("set aside"), std::string::npos) << error.Description();
      EXPECT_NO_THROW(static_cast<void>(Pager::Open(hurt, kEveningPath, {})));
    }
  }
  EXPECT_GT(found.size(), 1u);
}

}  // namespace
}  // namespace tavi::access::test
