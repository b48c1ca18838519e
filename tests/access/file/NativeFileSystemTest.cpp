#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <functional>
#include <limits>
#include <thread>

#include "access/file/FileSystem.h"
#include "access/file/Pager.h"
#include "access/file/support/SmallDatabase.h"
#include "access/file/support/TemporaryFolder.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::MakeSmallDatabase;
using test::ReadText;
using test::SetPageText;
using test::TemporaryFolder;
using test::WriteText;
using OpenMode = FileSystem::OpenMode;

class NativeFileSystemTest : public ::testing::Test {
 protected:
  TemporaryFolder folder_;
  std::shared_ptr<FileSystem> system_ = NativeFileSystem();
  std::string path_ = folder_.File("file");
};

TEST_F(NativeFileSystemTest, ReadsWritesAndTruncates) {
  const auto file = system_->Open(path_, OpenMode::CreateNew);
  const std::vector<std::uint8_t> bytes = {1, 2, 3, 4};
  file->WriteAt(100, bytes);
  EXPECT_EQ(file->Size(), 104u);
  std::vector<std::uint8_t> read(4);
  file->ReadAt(100, read);
  EXPECT_EQ(read, bytes);
  file->Sync();
  file->Truncate(102);
  EXPECT_EQ(file->Size(), 102u);
  try {
    file->ReadAt(100, read);
    FAIL();
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    EXPECT_EQ(error.Description(), "Could not read '" + path_ + "': the file ends at byte 102.");
  }
}

/// While it lives, the files of this process may not grow past a size, and the signal that tells so has its usual
/// meaning: the end of the process.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    struct rlimit limit = before_;
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
    handler_ = std::signal(SIGXFSZ, SIG_DFL);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  struct rlimit before_ {};
  void (*handler_)(int) = nullptr;
};

std::string ReasonOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.Description();
  }
  return "";
}

bool IsPending(int signal) {
  sigset_t pending;
  sigemptyset(&pending);
  ::sigpending(&pending);
  return sigismember(&pending, signal) == 1;
}

TEST_F(NativeFileSystemTest, AWritePastTheLimitOfTheSystemIsAnErrorAndNotTheEnd) {
  const auto file = system_->Open(path_, OpenMode::CreateNew);
  const std::vector<std::uint8_t> bytes(100);
  const FileSizeLimit limit(150);
  file->WriteAt(0, bytes);
  EXPECT_EQ(ReasonOf([&] { file->WriteAt(100, bytes); }),
            "Could not write '" + path_ + "' at byte 150: File too large.");
  EXPECT_EQ(ReasonOf([&] { file->Truncate(1000); }), "Could not change the length of '" + path_ + "': File too large.");
  EXPECT_FALSE(IsPending(SIGXFSZ));
  file->WriteAt(0, bytes);
}

TEST_F(NativeFileSystemTest, WhatTheHostHasSettledForTheSignalStays) {
  const auto file = system_->Open(path_, OpenMode::CreateNew);
  const std::vector<std::uint8_t> bytes(100);
  const FileSizeLimit limit(50);
  sigset_t signal;
  sigset_t mask;
  sigemptyset(&signal);
  sigaddset(&signal, SIGXFSZ);
  ::pthread_sigmask(SIG_BLOCK, &signal, nullptr);
  static_cast<void>(ReasonOf([&] { file->WriteAt(0, bytes); }));
  EXPECT_FALSE(IsPending(SIGXFSZ));
  ::raise(SIGXFSZ);
  static_cast<void>(ReasonOf([&] { file->WriteAt(0, bytes); }));
  EXPECT_TRUE(IsPending(SIGXFSZ)) << "the host's own signal is not taken away";
  ::pthread_sigmask(SIG_BLOCK, nullptr, &mask);
  EXPECT_EQ(sigismember(&mask, SIGXFSZ), 1);
  const struct timespec noTime {};
  EXPECT_EQ(::sigtimedwait(&signal, nullptr, &noTime), SIGXFSZ);
  ::pthread_sigmask(SIG_UNBLOCK, &signal, nullptr);
  EXPECT_NE(ReasonOf([&] { file->WriteAt(0, bytes); }), "");
  ::pthread_sigmask(SIG_BLOCK, nullptr, &mask);
  EXPECT_EQ(sigismember(&mask, SIGXFSZ), 0);
}

TEST_F(NativeFileSystemTest, ErrorsNameFileOperationAndReason) {
  try {
    static_cast<void>(system_->Open(path_, OpenMode::ReadWrite));
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.Description(), "Could not open '" + path_ + "': No such file or directory.");
  }
  EXPECT_THROW(system_->Remove(path_), Error);
  EXPECT_THROW(system_->Rename(path_, path_ + "2"), Error);
  EXPECT_THROW(static_cast<void>(system_->Open(folder_.Path().string(), OpenMode::ReadOnly)), Error);
  static_cast<void>(system_->Open(path_, OpenMode::CreateNew));
  EXPECT_THROW(static_cast<void>(system_->Open(path_, OpenMode::CreateNew)), Error);
}

TEST_F(NativeFileSystemTest, APipeUnderTheNameIsRefusedWithoutWaiting) {
  ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
  EXPECT_THROW(static_cast<void>(system_->Open(path_, OpenMode::ReadOnly)), Error);
}

TEST_F(NativeFileSystemTest, LocksExcludeOtherOpenersOfTheSameProcess) {
  const auto one = system_->Open(path_, OpenMode::CreateNew);
  auto two = system_->Open(path_, OpenMode::ReadWrite);
  EXPECT_TRUE(one->TryLock(10, 1, File::LockKind::Shared));
  EXPECT_TRUE(two->TryLock(10, 1, File::LockKind::Shared));
  EXPECT_FALSE(two->TryLock(10, 1, File::LockKind::Exclusive));
  EXPECT_TRUE(two->IsLockedByOther(0, std::numeric_limits<std::uint64_t>::max()));
  one->Unlock(10, 1);
  EXPECT_FALSE(two->IsLockedByOther(0, std::numeric_limits<std::uint64_t>::max()));
  EXPECT_TRUE(two->TryLock(10, 1, File::LockKind::Exclusive));
  EXPECT_FALSE(one->TryLock(10, 1, File::LockKind::Shared));
  two.reset();
  EXPECT_TRUE(one->TryLock(10, 1, File::LockKind::Exclusive));
}

TEST_F(NativeFileSystemTest, AFileWithoutWritePermissionIsReadOnlyForEverybody) {
  static_cast<void>(system_->Open(path_, OpenMode::CreateNew));
  EXPECT_TRUE(system_->IsWritable(path_));
  ASSERT_EQ(::chmod(path_.c_str(), 0444), 0);
  EXPECT_FALSE(system_->IsWritable(path_));
  EXPECT_THROW(static_cast<void>(system_->Open(path_, OpenMode::ReadWrite)), Error);
  EXPECT_TRUE(system_->Open(path_, OpenMode::ReadOnly)->IsReadOnly());
}

TEST_F(NativeFileSystemTest, AFolderWithoutWritePermissionTakesNoNewFiles) {
  static_cast<void>(system_->Open(path_, OpenMode::CreateNew));
  ASSERT_EQ(::chmod(folder_.Path().c_str(), 0555), 0);
  EXPECT_FALSE(system_->IsWritable(path_));
  EXPECT_THROW(static_cast<void>(system_->Open(path_ + "2", OpenMode::CreateNew)), Error);
}

TEST_F(NativeFileSystemTest, ALockOfTheWholeFileByAnotherProgramIsMet) {
  static_cast<void>(system_->Open(path_, OpenMode::CreateNew));
  const int other = ::open(path_.c_str(), O_RDWR);
  ASSERT_EQ(::flock(other, LOCK_EX), 0);
  try {
    static_cast<void>(system_->Open(path_, OpenMode::ReadWrite));
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_EQ(error.Description(),
              "Could not use '" + path_ + "'; file already in use. Another program has locked it as a whole.");
  }
  ::close(other);
  const auto file = system_->Open(path_, OpenMode::ReadWrite);
  const int late = ::open(path_.c_str(), O_RDWR);
  EXPECT_NE(::flock(late, LOCK_EX | LOCK_NB), 0);
  ::close(late);
}

TEST_F(NativeFileSystemTest, LinksHaveTheSameCanonicalPath) {
  static_cast<void>(system_->Open(path_, OpenMode::CreateNew));
  std::filesystem::create_symlink(path_, folder_.Path() / "link");
  EXPECT_EQ(system_->CanonicalPath(folder_.File("link")), system_->CanonicalPath(path_));
  EXPECT_EQ(system_->CanonicalPath(folder_.File("missing")), folder_.File("missing"));
}

TEST_F(NativeFileSystemTest, PermissionsAreCopied) {
  static_cast<void>(system_->Open(path_, OpenMode::CreateNew));
  static_cast<void>(system_->Open(path_ + "2", OpenMode::CreateNew));
  ASSERT_EQ(::chmod(path_.c_str(), 0660), 0);
  system_->CopyPermissions(path_, path_ + "2");
  struct stat status {};
  ASSERT_EQ(::stat((path_ + "2").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0660u);
  system_->CopyPermissions(folder_.File("missing"), path_);
}

TEST_F(NativeFileSystemTest, AProgramThatSetsTheTimeOfWritingCannotSetTheTimeOfTheChange) {
  const auto file = system_->Open(path_, OpenMode::CreateNew);
  const FileTimes before = file->Times();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  struct timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, {.tv_sec = 1000000000, .tv_nsec = 5}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path_.c_str(), times, 0), 0);
  EXPECT_EQ(file->Times().written, 1000000000LL * 1000000000 + 5);
  EXPECT_GT(file->Times().changed, before.changed);
}

class NativePagerTest : public NativeFileSystemTest {
 protected:
  void SetUp() override {
    path_ = folder_.File("club.mdb");
    Pager::Create(*system_, path_, MakeSmallDatabase(8));
  }
  std::unique_ptr<Pager> Open(int timeout = 5000) {
    return Pager::Open(system_, path_, {.lockTimeout = std::chrono::milliseconds(timeout)});
  }
};

TEST_F(NativePagerTest, WritesAndReadsARealFile) {
  {
    const auto pager = Open();
    WriteText(*pager, 3, "written");
    EXPECT_TRUE(system_->Exists(path_ + ".redo"));
  }
  EXPECT_FALSE(system_->Exists(path_ + ".redo"));
  EXPECT_EQ(ReadText(*Open(), 3), "written");
}

TEST_F(NativePagerTest, AClassicLockOfAnotherProcessIsReportedWithItsNumber) {
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  int ready[2];
  static_cast<void>(ready);
  if (child == 0) {
    const int file = ::open(path_.c_str(), O_RDWR);
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    ::fcntl(file, F_SETLK, &whole);
    std::ofstream(folder_.File("locked")) << "yes";
    ::pause();
    ::_exit(0);
  }
  while (!system_->Exists(folder_.File("locked"))) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  std::string failure;
  try {
    static_cast<void>(Open(20));
  } catch (const Error& error) {
    failure = error.Description();
  }
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(failure, "Could not use '" + path_ + "'; file already in use by process " + std::to_string(child) +
                         ". It stayed locked for 20 milliseconds; try again when the other user has finished.");
  EXPECT_EQ(ReadText(*Open(), 3), "page 3");
}

TEST_F(NativePagerTest, AKilledProcessLosesNothingThatItHadCommitted) {
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const auto pager = Open();
    WriteText(*pager, 3, "committed");
    pager->BeginWrite();
    SetPageText(pager->Write(4), "not committed");
    ::kill(::getpid(), SIGKILL);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_TRUE(system_->Exists(path_ + ".redo"));
  const auto pager = Open();
  EXPECT_EQ(ReadText(*pager, 3), "committed");
  EXPECT_EQ(ReadText(*pager, 4), "page 4");
}

TEST_F(NativePagerTest, StatementsOfThreadsAndProcessesInterleaveWithoutLoss) {
  constexpr int kRounds = 60;
  constexpr int kUsers = 2;
  const auto count = [this](Pager& pager) {
    for (int round = 0; round < kRounds; ++round) {
      WriteStatement statement(pager);
      const std::string text = test::PageText(pager.Write(3));
      const int value = text == "page 3" ? 0 : std::stoi(text);
      SetPageText(pager.Write(3), std::to_string(value + 1));
      SetPageText(pager.Write(4), std::to_string(value + 1));
      statement.Commit();
    }
  };
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    try {
      count(*Open(60000));
      ::_exit(0);
    } catch (const std::exception&) {
      ::_exit(1);
    }
  }
  std::vector<std::thread> threads;
  for (int user = 0; user < kUsers; ++user) {
    threads.emplace_back([&] {
      const auto pager = Pager::Open(NativeFileSystem(), path_,
                                     {.lockTimeout = std::chrono::milliseconds(60000), .checkpointBytes = 5000});
      count(*pager);
    });
  }
  bool torn = false;
  {
    const auto reader = Open(60000);
    for (int round = 0; round < kRounds; ++round) {
      const ReadStatement statement(*reader);
      const std::string one = test::PageText(*reader->Read(3));
      const std::string two = test::PageText(*reader->Read(4));
      torn = torn || (one != two && one != "page 3");
    }
  }
  for (std::thread& thread : threads) thread.join();
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_FALSE(torn);
  EXPECT_EQ(ReadText(*Open(), 3), std::to_string(kRounds * (kUsers + 1)));
  EXPECT_FALSE(system_->Exists(path_ + ".redo"));
}

TEST_F(NativePagerTest, TheLogMayBeReadByWhoeverMayReadTheDatabase) {
  ASSERT_EQ(::chmod(path_.c_str(), 0600), 0);
  const auto pager = Open();
  WriteText(*pager, 3, "private");
  struct stat status {};
  ASSERT_EQ(::stat((path_ + ".redo").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

}  // namespace
}  // namespace tavi::access
