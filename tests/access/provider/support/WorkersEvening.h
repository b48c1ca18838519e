#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "access/catalog/Check.h"
#include "access/file/Pager.h"
#include "access/file/support/LongRun.h"
#include "access/file/support/TemporaryFolder.h"
#include "access/provider/support/Evening.h"
#include "access/provider/support/Inspection.h"
#include "access/provider/support/Worker.h"

namespace tavi::access::test {

/// An evening that a process of its own tells, on a file of the system.
class WorkersEvening : public testing::Test {
 protected:
  static constexpr std::size_t kSteps = 150;

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

}  // namespace tavi::access::test
