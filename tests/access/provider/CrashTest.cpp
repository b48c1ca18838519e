// The machine stops at every single point of a long evening, in the middle of writes and between them. What is found
// afterwards holds exactly the finished statements: all of them when only the process died, all up to the last close
// when the power failed; never a part of one.
#include <gtest/gtest.h>
#include <fstream>
#include <map>

#include "access/catalog/Check.h"
#include "access/file/Pager.h"
#include "access/file/support/LongRun.h"
#include "access/file/support/StoppingFileSystem.h"
#include "access/file/support/TemporaryFolder.h"
#include "access/provider/AccessProvider.h"
#include "access/provider/support/Evening.h"
#include "access/provider/support/Inspection.h"

namespace tavi::access::test {
namespace {

// Small, so that an evening has checkpoints between its closes too.
constexpr std::uint64_t kCheckpointBytes = std::uint64_t{120} << 10U;

std::unique_ptr<Database> OpenFile(const std::shared_ptr<FileSystem>& fileSystem) {
  return std::make_unique<Database>(Pager::Open(fileSystem, kEveningPath, {}));
}

/// What may be found at a point of the evening.
struct Expectation {
  std::size_t first = 0;  // numbers of the states that are allowed, the last one included
  std::size_t last = 0;
};

/// Tells an evening on a file system, by one connection or by two that take turns.
class Teller {
 public:
  Teller(std::vector<EveningStep> steps, bool withSecondUser)
      : steps_(std::move(steps)), withSecondUser_(withSecondUser) {}

  /// `afterEach` is called after each step.
  void Tell(const std::shared_ptr<FileSystem>& fileSystem, const std::function<void()>& afterEach) {
    ProviderOptions options;
    options.pager.checkpointBytes = kCheckpointBytes;
    const auto provider = MakeAccessProvider(fileSystem, std::make_shared<EveningClock>(), options);
    const auto second = withSecondUser_ ? provider->Open(kEveningSource) : nullptr;
    auto first = provider->Open(kEveningSource);
    bool hasChanged = false;
    for (const EveningStep& step : steps_) {
      if (step.kind == EveningStep::Kind::Reopen) {
        first->Close();
        if (hasChanged) durable_ = finished_;
        hasChanged = false;
        first = provider->Open(kEveningSource);
      } else {
        const bool isSecond = second && finished_ % 5 == 4;
        isRunning_ = true;
        const bool done = RunStep(isSecond ? *second : *first, step);
        isRunning_ = false;
        if (!isSecond && done) hasChanged = true;
      }
      ++finished_;
      afterEach();
    }
    first->Close();
    if (second) second->Close();
  }

  [[nodiscard]] Expectation Expected(CrashKind kind) const {
    return {kind == CrashKind::Kept ? finished_ : durable_, finished_ + (isRunning_ ? 1 : 0)};
  }

 private:
  std::vector<EveningStep> steps_;
  bool withSecondUser_;
  std::size_t finished_ = 0;
  std::size_t durable_ = 0;
  bool isRunning_ = false;
};

class CrashTest : public testing::TestWithParam<bool> {
 protected:
  void CheckAllKinds(const MemoryFileSystem& memory, const Teller& teller) {
    ++points_;
    Check(memory.AfterCrash(CrashKind::Kept, 0), teller.Expected(CrashKind::Kept), "kept");
    Check(memory.AfterCrash(CrashKind::Dropped, 0), teller.Expected(CrashKind::Dropped), "dropped");
    const std::uint32_t seed = seed_ + static_cast<std::uint32_t>(points_);
    Check(memory.AfterCrash(CrashKind::Torn, seed), teller.Expected(CrashKind::Torn), "torn");
  }

  // Opens what a crash has left behind.
  void Check(const std::shared_ptr<MemoryFileSystem>& found, Expectation expected, const char* kind) {
    if (HasFailure()) return;
    SCOPED_TRACE("seed " + std::to_string(seed_) + ", point " + std::to_string(points_) + ", " + kind);
    ++stops_;
    if (stops_ % 29 == 0) CheckStopsOfTheRecovery(*found, expected);
    EXPECT_TRUE(Allows(expected, DigestAfterCheck(found)))
        << "not a state from " << expected.first << " to " << expected.last;
    if (stops_ % 97 == 0) CheckWithAnotherReader(found);
  }

  // The digest of what is recovered, which has no faults. The same bytes are recovered and checked once.
  std::uint64_t DigestAfterCheck(const std::shared_ptr<MemoryFileSystem>& found) {
    const std::uint64_t bytes = found->Sum();
    const auto known = checked_.find(bytes);
    if (known != checked_.end()) return known->second;
    const auto database = OpenFile(found);
    const std::uint64_t digest = DigestOf(*database);
    EXPECT_EQ(CheckDatabase(*database, CheckKind::Strict), std::vector<std::string>());
    EXPECT_FALSE(found->Exists(std::string(kEveningPath) + ".redo"));
    checked_.emplace(bytes, digest);
    return digest;
  }

  [[nodiscard]] bool Allows(Expectation expected, std::uint64_t digest) const {
    for (std::size_t state = expected.first; state <= expected.last; ++state) {
      if (digests_.at(state) == digest) return true;
    }
    return false;
  }

  // The recovery stops too, at every point.
  void CheckStopsOfTheRecovery(const MemoryFileSystem& found, Expectation expected) {
    const auto again = found.AfterCrash(CrashKind::Kept, 0);
    const auto check = [&](const MemoryFileSystem& memory) {
      for (const CrashKind kind : {CrashKind::Kept, CrashKind::Dropped, CrashKind::Torn}) {
        ++secondStops_;
        const auto left = memory.AfterCrash(kind, seed_ + static_cast<std::uint32_t>(secondStops_));
        EXPECT_TRUE(Allows(expected, DigestAfterCheck(left))) << "second stop " << secondStops_;
      }
    };
    static_cast<void>(OpenFile(std::make_shared<StoppingFileSystem>(again, check)));
  }

  void CheckWithAnotherReader(const std::shared_ptr<MemoryFileSystem>& found) {
    ++readings_;
    if (!hasOtherReader_) return;
    const auto database = OpenFile(found);
    const PrintedRows expected = PrintTables(*database);
    database->GetPager().Close();
    const TemporaryFolder folder;
    const auto bytes = found->Contents(kEveningPath);
    std::ofstream(folder.File(kEveningPath), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    EXPECT_EQ(PrintTablesByAnother(folder.File(kEveningPath)), expected);
  }

  std::uint32_t seed_ = SeedOr(GetParam() ? 20020401 : 19470215);
  std::vector<EveningStep> steps_ = MakeEvening(seed_, Lengthened(240));
  std::vector<std::uint64_t> digests_ = RehearseEvening(steps_);
  std::map<std::uint64_t, std::uint64_t> checked_;  // checksums of bytes: their digests
  std::size_t points_ = 0;
  std::size_t stops_ = 0;
  std::size_t secondStops_ = 0;
  std::size_t readings_ = 0;
  bool hasOtherReader_ = AnotherReaderIsThere();
};

TEST_P(CrashTest, AStopAtAnyPointLeavesExactlyTheFinishedStatements) {
  const auto memory = NewEveningFile();
  Teller teller(steps_, GetParam());
  const auto stopping =
      std::make_shared<StoppingFileSystem>(memory, [&](const MemoryFileSystem& now) { CheckAllKinds(now, teller); });
  teller.Tell(stopping, [] {});
  CheckAllKinds(*memory, teller);
  EXPECT_GT(stops_, 6 * steps_.size());
  EXPECT_GT(secondStops_, steps_.size());
  EXPECT_EQ(readings_, stops_ / 97);
  RecordProperty("Stops", static_cast<int>(stops_));
  RecordProperty("SecondStops", static_cast<int>(secondStops_));
  std::cout << stops_ << " stops, " << secondStops_ << " in recoveries, " << checked_.size() << " different contents, "
            << readings_ << " read by another program\n";
  if (!hasOtherReader_) GTEST_SKIP() << "mdbtools is not installed";
}

INSTANTIATE_TEST_SUITE_P(Users, CrashTest, testing::Values(false, true),
                         [](const auto& users) { return users.param ? "Two" : "One"; });

}  // namespace
}  // namespace tavi::access::test
