// Disks that are full, that fail, or that may no longer be written. Each statement either happens or is refused with an
// error that says why; then nothing of it is there, and everything works again once the trouble is over.
#include <gtest/gtest.h>

#include <filesystem>

#include "access/catalog/Check.h"
#include "access/file/Pager.h"
#include "access/file/support/FailingFileSystem.h"
#include "access/file/support/LongRun.h"
#include "access/file/support/Random.h"
#include "access/file/support/TemporaryFolder.h"
#include "access/provider/AccessProvider.h"
#include "access/provider/support/Evening.h"
#include "access/provider/support/Inspection.h"
#include "platform/ConnectionTo.h"
#include "platform/values/Convert.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

using Operation = FailingFileSystem::Operation;

class DiskTroubleTest : public testing::Test {
 protected:
  void Open() {
    ProviderOptions options;
    options.pager.checkpointBytes = std::uint64_t{60} << 10U;
    options.pager.cacheBytes = std::uint64_t{100} << 10U;
    connection_ = MakeAccessProvider(failing_, std::make_shared<EveningClock>(), options)->Open(kEveningSource);
  }

  // What another one would find in the file now.
  std::uint64_t Digest(bool withCheck = false) {
    Database database(Pager::Open(memory_->AfterCrash(CrashKind::Kept, 0), kEveningPath, {}));
    if (withCheck) {
      EXPECT_EQ(CheckDatabase(database, CheckKind::Strict), std::vector<std::string>());
    }
    return DigestOf(database);
  }

  // Runs a step under a trouble that `begin` makes; gives way to `end` when the step was refused because of it.
  // Expects the state before or after, as the answer says. Returns whether there was a refusal.
  bool RunUnderTrouble(std::size_t step, const std::function<void()>& begin, const std::function<void()>& end,
                       const std::string& reason) {
    SCOPED_TRACE("seed " + std::to_string(seed_) + ", step " + std::to_string(step));
    if (steps_[step].kind == EveningStep::Kind::Reopen) return ReopenUnderTrouble(step, begin, end, reason);
    std::string refusal;
    begin();
    const bool isDone = RunStep(*connection_, steps_[step], &refusal);
    end();
    const bool isRefused = !isDone && refusal.find(reason) != std::string::npos;
    if (isRefused) {
      EXPECT_NE(refusal.find(kEveningPath), std::string::npos) << refusal;
      EXPECT_EQ(Digest(true), digests_[step]);
      RunStep(*connection_, steps_[step]);
    }
    EXPECT_EQ(Digest(), digests_[step + 1]);
    return isRefused;
  }

  // A close may meet the trouble too; then the log keeps what it could not bring into the file.
  bool ReopenUnderTrouble(std::size_t step, const std::function<void()>& begin, const std::function<void()>& end,
                          const std::string& reason) {
    bool isRefused = false;
    begin();
    try {
      connection_->Close();
    } catch (const Error& error) {
      isRefused = true;
      EXPECT_NE(error.Description().find(reason), std::string::npos) << error.Description();
    }
    EXPECT_EQ(Digest(isRefused), digests_[step]);
    try {
      Open();
    } catch (const Error& error) {
      EXPECT_NE(error.Description().find(reason), std::string::npos) << error.Description();
      end();
      Open();
    }
    end();
    EXPECT_EQ(Digest(), digests_[step + 1]);
    return isRefused;
  }

  /// Takes the file back to what it was, for everybody.
  void GoBackTo(const std::shared_ptr<MemoryFileSystem>& before) {
    connection_.reset();
    memory_ = before;
    failing_ = std::make_shared<FailingFileSystem>(memory_);
    Open();
  }

  void Reopen() {
    connection_->Close();
    Open();
  }

  /// All rows of a statement as text, or the error.
  std::string AnswerTo(const std::string& statement) {
    std::string answer;
    try {
      const auto rows = connection_->OpenRecordset(statement, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly,
                                                   ado::SourceKind::CommandText);
      for (; !rows->AtEnd(); rows->MoveNext()) {
        for (const ado::Field& field : rows->Fields()) {
          const Value value = rows->Get(field.name);
          answer += IsNull(value) ? "-|" : ToText(value) + "|";
        }
      }
    } catch (const Error& error) {
      return error.Description();
    }
    return answer;
  }

  void ExpectAllDone() {
    connection_->Close();
    EXPECT_EQ(Digest(true), digests_.back());
    EXPECT_EQ(memory_->Paths(), std::vector<std::string>{kEveningPath});
  }

  void FailOneCall(const std::set<Operation>& operations, std::size_t atMost) {
    std::size_t refusals = 0;
    for (std::size_t step = 0; step < steps_.size() && !HasFailure(); ++step) {
      // Every call that the step makes fails in turn, as long as it notices.
      const std::size_t call = random_.Below(atMost);
      const bool isRefused = RunUnderTrouble(
          step, [&] { failing_->FailCall(call, operations, random_.Below(3) == 0); }, [&] { failing_->FailNothing(); },
          "Input/output error");
      if (isRefused) ++refusals;
    }
    ExpectAllDone();
    EXPECT_GT(refusals, 0u);
    std::cout << refusals << " refusals\n";
  }

  std::uint32_t seed_ = SeedOr(1959);
  Random random_{seed_};
  std::vector<EveningStep> steps_ = MakeEvening(seed_, Lengthened(150));
  std::vector<std::uint64_t> digests_ = RehearseEvening(steps_);
  std::shared_ptr<MemoryFileSystem> memory_ = NewEveningFile();
  std::shared_ptr<FailingFileSystem> failing_ = std::make_shared<FailingFileSystem>(memory_);
  std::unique_ptr<ado::Connection> connection_;
};

class EveningUnderTrouble : public DiskTroubleTest {
 protected:
  void SetUp() override { Open(); }
};

TEST_F(EveningUnderTrouble, AFullDiskRefusesStatementsAndLosesNone) {
  std::size_t refusals = 0;
  for (std::size_t step = 0; step < steps_.size() && !HasFailure(); ++step) {
    const bool isRefused = RunUnderTrouble(
        step, [&] { memory_->SetCapacity(memory_->BytesUsed() + random_.Below(30000)); },
        [&] { memory_->SetCapacity(~std::uint64_t{0}); }, "No space left on device");
    if (isRefused) ++refusals;
  }
  ExpectAllDone();
  EXPECT_GT(refusals, 0u);
  std::cout << refusals << " refusals\n";
}

TEST_F(EveningUnderTrouble, AFailingReadRefusesStatementsAndLosesNone) {
  FailOneCall({Operation::Read}, 60);
}

// Every single read of a small evening fails once: the step is refused with the place, or done without it.
TEST_F(EveningUnderTrouble, EachReadThatFailsRefusesItsStatementAndLosesNothing) {
  std::size_t refusals = 0;
  const std::size_t last = std::min<std::size_t>(steps_.size(), Lengthened(40));
  for (std::size_t step = 0; step < last && !HasFailure(); ++step) {
    // The step is told until it meets no failing read any more; each time from the same state.
    for (std::size_t call = 0; !HasFailure(); ++call) {
      SCOPED_TRACE("read " + std::to_string(call));
      const auto before = memory_->AfterCrash(CrashKind::Kept, 0);
      const bool isRefused = RunUnderTrouble(
          step, [&] { failing_->FailCall(call, {Operation::Read}); }, [&] { failing_->FailNothing(); },
          "Input/output error");
      if (isRefused) ++refusals;
      if (!failing_->HasFailed()) break;
      GoBackTo(before);
    }
  }
  EXPECT_GT(refusals, 2 * last);
  std::cout << refusals << " refusals\n";
}

// The same with questions: an answer is right, or there is none.
TEST_F(EveningUnderTrouble, EachReadThatFailsGivesNoWrongAnswer) {
  for (std::size_t step = 0; step < steps_.size(); ++step) {
    if (steps_[step].kind != EveningStep::Kind::Reopen) RunStep(*connection_, steps_[step]);
  }
  std::size_t refusals = 0;
  for (const std::string question :
       {"Select * From Members", "Select Count(*) From Members Where ID > 3", "Select * From Members Order By [Name]",
        "Select Members.[Name], Results.Score From Members Inner Join Results On Members.ID = Results.Player"}) {
    Reopen();
    const std::string right = AnswerTo(question);
    for (std::size_t call = 0;; ++call) {
      Reopen();
      failing_->FailCall(call, {Operation::Read});
      const std::string answer = AnswerTo(question);
      failing_->FailNothing();
      if (!failing_->HasFailed()) break;
      if (answer == right) continue;
      EXPECT_NE(answer.find("Input/output error"), std::string::npos) << question << "\n" << answer;
      EXPECT_NE(answer.find(kEveningPath), std::string::npos) << answer;
      ++refusals;
    }
  }
  EXPECT_GT(refusals, 10U);
  std::cout << refusals << " refusals\n";
}

TEST_F(EveningUnderTrouble, AFailingWriteRefusesStatementsAndLosesNone) {
  FailOneCall({Operation::Write, Operation::Create, Operation::Truncate}, 2);
}

TEST_F(EveningUnderTrouble, AFailingFlushLosesNothing) {
  std::size_t failures = 0;
  for (std::size_t step = 0; step < steps_.size() && !HasFailure(); ++step) {
    RunUnderTrouble(
        step,
        [&] {
          failing_->FailCall(random_.Below(3), {Operation::Sync, Operation::SyncFolder, Operation::Remove});
        },
        [&] { failing_->FailNothing(); }, "Input/output error");
    if (failing_->HasFailed()) ++failures;
  }
  ExpectAllDone();
  EXPECT_GT(failures, 0u);
}

TEST_F(EveningUnderTrouble, AFailingLockRefusesStatementsAndLosesNone) {
  FailOneCall({Operation::Lock}, 3);
}

// A file that is read-only for a while, in the middle of the evening: what is open goes on, what is opened only reads.
TEST_F(EveningUnderTrouble, AFileThatMayNotBeWrittenForAWhileIsReadAllTheTime) {
  std::size_t refusals = 0;
  for (std::size_t step = 0; step < steps_.size() && !HasFailure(); ++step) {
    if (step % 10 == 9) {
      memory_->SetReadOnly(kEveningPath, true);
      connection_->Close();
      Open();
      try {
        connection_->Execute("Insert Into Members (Code) Values (100000)");
        ADD_FAILURE() << "a file that is read-only was written";
      } catch (const Error& error) {
        EXPECT_TRUE(error.Is(ErrorNumber::ProviderPermission));
        EXPECT_NE(error.Description().find("read-only"), std::string::npos);
        ++refusals;
      }
      EXPECT_EQ(Digest(), digests_[step]);
      memory_->SetReadOnly(kEveningPath, false);
      connection_->Close();
      Open();
    }
    RunStep(*connection_, steps_[step]);
    EXPECT_EQ(Digest(), digests_[step + 1]);
  }
  ExpectAllDone();
  EXPECT_GT(refusals, 0u);
}

// The same on the real system, where the system's administrator is refused too.
TEST(RealDiskTrouble, AFileWhoseWritePermissionIsTakenAwayIsReadAndWorksAgainAfterwards) {
  const TemporaryFolder folder;
  const std::string path = folder.File("club.mdb");
  Database::CreateFile(*NativeFileSystem(), path, Date{45000});
  const auto provider = MakeAccessProvider(NativeFileSystem(), std::make_shared<EveningClock>(), {});
  const auto open = [&] { return provider->Open(ConnectionTo(path)); };
  const auto countRows = [](ado::Connection& connection) {
    const auto rows = connection.OpenRecordset("Select Count(*) As N From Members", ado::CursorType::ForwardOnly,
                                               ado::LockType::ReadOnly, ado::SourceKind::CommandText);
    return std::get<std::int32_t>(rows->Get("N"));
  };
  using std::filesystem::perms;
  const auto connection = open();
  connection->Execute("Create Table Members (ID Counter, [Name] Text (50))");
  connection->Execute("Insert Into Members ([Name]) Values ('Ann')");
  for (const auto& [target, allowed] :
       {std::pair{path, perms::owner_read | perms::owner_write}, std::pair{folder.Path().string(), perms::owner_all}}) {
    std::filesystem::permissions(target, perms::owner_write, std::filesystem::perm_options::remove);
    const auto second = open();
    EXPECT_EQ(countRows(*second), 1);
    try {
      second->Execute("Insert Into Members ([Name]) Values ('Bob')");
      ADD_FAILURE() << "written without permission";
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::ProviderPermission)) << error.Description();
    }
    std::filesystem::permissions(target, allowed);
  }
  connection->Execute("Insert Into Members ([Name]) Values ('Bob')");
  connection->Close();
  EXPECT_EQ(countRows(*open()), 2);
}

}  // namespace
}  // namespace tavi::access::test
