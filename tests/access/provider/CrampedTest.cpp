// A process that works on a file may not let files grow. All that it had reported as finished is there, and nothing of
// what was not.
#include <iostream>

#include "access/provider/support/WorkersEvening.h"

namespace tavi::access::test {
namespace {

using CrampedTest = WorkersEvening;

TEST_F(CrampedTest, AProcessWhoseFilesMayNotGrowSaysSoAndGoesOnWhenThereIsRoom) {
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
