// Processes that work on a file are killed at random moments, or may not let files grow. All that they had reported as
// finished is there, and nothing of what was not.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "access/catalog/Check.h"
#include "access/file/Pager.h"
#include "access/file/support/LongRun.h"
#include "access/file/support/Random.h"
#include "access/file/support/TemporaryFolder.h"
#include "access/provider/support/Evening.h"
#include "access/provider/support/Inspection.h"
#include "access/provider/support/Worker.h"

namespace tavi::access::test {
namespace {

constexpr std::size_t kSteps = 150;

class KillTest : public testing::Test {
 protected:
  void SetUp() override { Begin(SeedOr(19)); }

  void Begin(std::uint32_t seed) {
    seed_ = seed;
    steps_ = MakeEvening(seed, kSteps);
    digests_ = RehearseEvening(steps_);
    path_ = folder_.File("club" + std::to_string(seed) + ".mdb");
    Database::CreateFile(*NativeFileSystem(), path_, Date{45000});
  }

  Worker Start(const std::string& task, std::size_t first) {
    return Worker({task, path_, std::to_string(seed_), std::to_string(kSteps), std::to_string(first)});
  }

  // How many steps the file holds: the reported ones, or one more that was not reported any more.
  std::size_t StepsFound(std::size_t reported) {
    Database database(Pager::Open(NativeFileSystem(), path_, {}));
    EXPECT_EQ(CheckDatabase(database, CheckKind::Strict), std::vector<std::string>());
    const std::uint64_t digest = DigestOf(database);
    if (reported + 1 < digests_.size() && digest == digests_[reported + 1]) return reported + 1;
    EXPECT_EQ(digest, digests_[reported]) << "seed " << seed_ << ", after " << reported << " steps";
    return reported;
  }

  std::uint32_t seed_ = 0;
  std::vector<EveningStep> steps_;
  std::vector<std::uint64_t> digests_;
  TemporaryFolder folder_;
  std::string path_;
};

TEST_F(KillTest, AProcessThatIsKilledAtAnyMomentLosesNothingThatItReported) {
  const std::size_t wanted = Lengthened(200);
  Random random(seed_);
  std::size_t kills = 0;
  std::size_t found = 0;
  while (kills < wanted && !HasFailure()) {
    Worker worker = Start("evening", found);
    // Some die while they open the file, most in the middle of their work.
    for (std::uint32_t lines = random.Below(10); lines > 0; --lines) {
      if (const auto line = worker.ReadLine()) found = std::stoul(*line);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random.Below(3000)));
    worker.Kill();
    while (const auto line = worker.ReadLine()) found = std::stoul(*line);
    if (worker.Wait() == -SIGKILL) ++kills;
    found = StepsFound(found);
    if (found < steps_.size()) continue;
    Begin(seed_ + 1);
    found = 0;
  }
  std::cout << kills << " kills\n";
}

TEST_F(KillTest, AProcessWhoseFilesMayNotGrowSaysSoAndGoesOnWhenThereIsRoom) {
  Worker worker = Start("cramped", 0);
  std::size_t finished = 0;
  std::size_t refusals = 0;
  while (const auto line = worker.ReadLine()) {
    if (line->starts_with("error ")) {
      ++refusals;
      EXPECT_NE(line->find("'" + path_), std::string::npos) << *line;
      EXPECT_NE(line->find("File too large"), std::string::npos) << *line;
    } else {
      finished = std::stoul(*line);
    }
  }
  EXPECT_EQ(worker.Wait(), 0);
  EXPECT_EQ(finished, steps_.size());
  EXPECT_GT(refusals, 20u);
  EXPECT_EQ(StepsFound(finished), steps_.size());
  std::cout << refusals << " refusals\n";
}

}  // namespace
}  // namespace tavi::access::test
