// Processes that work on a file are killed at random moments. All that they had reported as finished is there, and
// nothing of what was not.
#include <chrono>
#include <iostream>
#include <thread>

#include "access/file/support/Random.h"
#include "access/provider/support/WorkersEvening.h"

namespace tavi::access::test {
namespace {

using KillTest = WorkersEvening;

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
    if (worker.Wait() == Worker::kKilled) ++kills;
    found = StepsFound(found);
    if (found < steps_.size()) continue;
    Begin(seed_ + 1);
    found = 0;
  }
  std::cout << kills << " kills\n";
}

}  // namespace
}  // namespace tavi::access::test
