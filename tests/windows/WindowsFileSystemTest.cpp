// The operating system's files as the engine uses them on Windows.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <limits>

#include "access/file/FileSystem.h"
#include "access/file/support/TemporaryFolder.h"
#include "platform/values/Error.h"
#include "platform/values/WideText.h"

namespace tavi::access {
namespace {

using LockKind = File::LockKind;
using OpenMode = FileSystem::OpenMode;

constexpr std::uint64_t kOwnByte = std::uint64_t{1} << 31U;
constexpr std::uint64_t kEverything = std::numeric_limits<std::uint64_t>::max();

class WindowsFileSystemTest : public ::testing::Test {
 protected:
  test::TemporaryFolder folder_;
  std::shared_ptr<FileSystem> system_ = NativeFileSystem();
  std::string path_ = folder_.File("file");
};

TEST_F(WindowsFileSystemTest, ReadsWritesAndTruncates) {
  const auto file = system_->Open(path_, OpenMode::CreateNew);
  const std::vector<std::uint8_t> bytes = {1, 2, 3, 4};
  file->WriteAt(100, bytes);
  EXPECT_EQ(file->Size(), 104U);
  std::vector<std::uint8_t> read(4);
  file->ReadAt(100, read);
  EXPECT_EQ(read, bytes);
  file->Sync();
  file->Truncate(102);
  EXPECT_EQ(file->Size(), 102U);
  EXPECT_THROW(file->ReadAt(100, read), Error);
}

TEST_F(WindowsFileSystemTest, NamesInAllScriptsAreOneFileInTheSystem) {
  const std::string name = folder_.File("Łukasz Müller 橋");
  system_->Open(name, OpenMode::CreateNew)->WriteAt(0, std::vector<std::uint8_t>{7});
  EXPECT_TRUE(system_->Exists(name));
  EXPECT_NE(::GetFileAttributesW(windows::ToWide(name).c_str()), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(system_->Open(name, OpenMode::ReadOnly)->Size(), 1U);
  system_->Remove(name);
  EXPECT_FALSE(system_->Exists(name));
}

TEST_F(WindowsFileSystemTest, ErrorsNameFileAndOperation) {
  try {
    static_cast<void>(system_->Open(path_, OpenMode::ReadWrite));
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.Description().find("Could not open '" + path_ + "': "), 0U) << error.Description();
  }
  EXPECT_THROW(system_->Remove(path_), Error);
  EXPECT_THROW(system_->Rename(path_, path_ + "2"), Error);
  EXPECT_THROW(static_cast<void>(system_->Open(folder_.Path().string(), OpenMode::ReadOnly)), Error);
  static_cast<void>(system_->Open(path_, OpenMode::CreateNew));
  EXPECT_THROW(static_cast<void>(system_->Open(path_, OpenMode::CreateNew)), Error);
}

TEST_F(WindowsFileSystemTest, AFileThatAnotherProgramKeepsToItselfIsInUse) {
  static_cast<void>(system_->Open(path_, OpenMode::CreateNew));
  const HANDLE alone =
      ::CreateFileW(windows::ToWide(path_).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(alone, INVALID_HANDLE_VALUE);
  try {
    static_cast<void>(system_->Open(path_, OpenMode::ReadWrite));
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_NE(error.Description().find("file already in use"), std::string::npos) << error.Description();
  }
  ::CloseHandle(alone);
}

TEST_F(WindowsFileSystemTest, AReadOnlyFileIsNotWritable) {
  static_cast<void>(system_->Open(path_, OpenMode::CreateNew));
  EXPECT_TRUE(system_->IsWritable(path_));
  ::SetFileAttributesW(windows::ToWide(path_).c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_FALSE(system_->IsWritable(path_));
  EXPECT_THROW(static_cast<void>(system_->Open(path_, OpenMode::ReadWrite)), Error);
  EXPECT_TRUE(system_->Open(path_, OpenMode::ReadOnly)->IsReadOnly());
  ::SetFileAttributesW(windows::ToWide(path_).c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(WindowsFileSystemTest, RenamingReplacesAndFilesInUseCanBeRemoved) {
  const auto file = system_->Open(path_, OpenMode::CreateNew);
  static_cast<void>(system_->Open(path_ + "2", OpenMode::CreateNew));
  system_->Rename(path_, path_ + "2");
  EXPECT_FALSE(system_->Exists(path_));
  EXPECT_TRUE(system_->Exists(path_ + "2"));
}

TEST_F(WindowsFileSystemTest, AFileKnowsWhetherAnotherOneHasTakenItsName) {
  const auto file = system_->Open(path_, OpenMode::CreateNew);
  EXPECT_TRUE(file->IsStillAt(path_));
  system_->Rename(path_, path_ + "2");
  EXPECT_FALSE(file->IsStillAt(path_));
  EXPECT_TRUE(file->IsStillAt(path_ + "2"));
  static_cast<void>(system_->Open(path_, OpenMode::CreateNew));
  EXPECT_FALSE(file->IsStillAt(path_));
}

TEST_F(WindowsFileSystemTest, OnePathStandsForAllWritingsOfAFile) {
  static_cast<void>(system_->Open(path_, OpenMode::CreateNew));
  const std::string other = (folder_.Path() / "." / "FILE").string();
  EXPECT_EQ(system_->CanonicalPath(other), system_->CanonicalPath(path_));
  EXPECT_EQ(system_->CanonicalPath(path_ + "x"), path_ + "x");
}

TEST_F(WindowsFileSystemTest, AWriteChangesTheStamp) {
  const auto file = system_->Open(path_, OpenMode::CreateNew);
  const FileTimes before = file->Times();
  ::Sleep(20);
  system_->Open(path_, OpenMode::ReadWrite)->WriteAt(0, std::vector<std::uint8_t>{1});
  EXPECT_NE(file->Times(), before);
}

class WindowsLockTest : public WindowsFileSystemTest {
 protected:
  std::unique_ptr<File> one_ = system_->Open(path_, OpenMode::CreateNew);
  std::unique_ptr<File> two_ = system_->Open(path_, OpenMode::ReadWrite);
};

TEST_F(WindowsLockTest, SharersExcludeAWriterUntilTheyLeave) {
  EXPECT_TRUE(one_->TryLock(kOwnByte, 1, LockKind::Shared));
  EXPECT_TRUE(two_->TryLock(kOwnByte, 1, LockKind::Shared));
  EXPECT_FALSE(two_->TryLock(kOwnByte, 1, LockKind::Exclusive));
  EXPECT_TRUE(two_->IsLockedByOther(0, kEverything));
  one_->Unlock(kOwnByte, 1);
  EXPECT_FALSE(two_->IsLockedByOther(0, kEverything)) << "its own lock is no other's";
  EXPECT_TRUE(two_->TryLock(kOwnByte, 1, LockKind::Exclusive));
  EXPECT_FALSE(one_->TryLock(kOwnByte, 1, LockKind::Shared));
  two_->Unlock(kOwnByte, 1);
  EXPECT_FALSE(one_->IsLockedByOther(kOwnByte, 1));
}

TEST_F(WindowsLockTest, BytesOfOtherProgramsAreLockedWhereTheyAre) {
  constexpr std::uint64_t kUserOfAnotherProgram = 0x10000001;
  EXPECT_TRUE(one_->TryLock(kUserOfAnotherProgram, 1, LockKind::Exclusive));
  EXPECT_TRUE(two_->IsLockedByOther(kUserOfAnotherProgram, 1));
  EXPECT_FALSE(two_->IsLockedByOther(kUserOfAnotherProgram + 1, 1));
  EXPECT_TRUE(two_->IsLockedByOther(0, kEverything));
  EXPECT_FALSE(one_->IsLockedByOther(0, kEverything));
  EXPECT_FALSE(two_->TryLock(kUserOfAnotherProgram, 1, LockKind::Shared));
  EXPECT_TRUE(one_->TryLock(kUserOfAnotherProgram, 1, LockKind::Shared));
  EXPECT_TRUE(two_->TryLock(kUserOfAnotherProgram, 1, LockKind::Shared));
}

TEST_F(WindowsLockTest, ARefusedWriterStillShares) {
  ASSERT_TRUE(one_->TryLock(kOwnByte, 1, LockKind::Shared));
  ASSERT_TRUE(two_->TryLock(kOwnByte, 1, LockKind::Shared));
  EXPECT_FALSE(one_->TryLock(kOwnByte, 1, LockKind::Exclusive));
  EXPECT_FALSE(two_->TryLock(kOwnByte, 1, LockKind::Exclusive)) << "the other one never let go";
  EXPECT_TRUE(one_->IsLockedByOther(kOwnByte, 1));
  EXPECT_TRUE(two_->IsLockedByOther(kOwnByte, 1));
}

TEST_F(WindowsLockTest, AWriterThatSharesAgainLetsReadersInAndNoWriter) {
  ASSERT_TRUE(one_->TryLock(kOwnByte, 1, LockKind::Exclusive));
  EXPECT_FALSE(two_->TryLock(kOwnByte, 1, LockKind::Shared));
  ASSERT_TRUE(one_->TryLock(kOwnByte, 1, LockKind::Shared));
  EXPECT_TRUE(two_->TryLock(kOwnByte, 1, LockKind::Shared));
  EXPECT_FALSE(two_->TryLock(kOwnByte, 1, LockKind::Exclusive));
}

TEST_F(WindowsLockTest, TwoBytesAreTakenTogetherAndLeftOneByOne) {
  ASSERT_TRUE(two_->TryLock(kOwnByte + 1, 1, LockKind::Shared));
  EXPECT_FALSE(one_->TryLock(kOwnByte, 2, LockKind::Exclusive));
  EXPECT_FALSE(two_->IsLockedByOther(kOwnByte, 2)) << "nothing stays behind";
  EXPECT_TRUE(one_->TryLock(kOwnByte, 2, LockKind::Shared));
  one_->Unlock(kOwnByte, 1);
  EXPECT_TRUE(two_->TryLock(kOwnByte, 1, LockKind::Exclusive));
  EXPECT_FALSE(two_->TryLock(kOwnByte + 1, 1, LockKind::Exclusive));
  one_->Unlock(kOwnByte, 2);
  EXPECT_TRUE(two_->TryLock(kOwnByte + 1, 1, LockKind::Exclusive));
}

TEST_F(WindowsLockTest, ManyShareAndClosingLetsGo) {
  std::vector<std::unique_ptr<File>> many;
  for (int count = 0; count < 40; ++count) {
    many.push_back(system_->Open(path_, OpenMode::ReadOnly));
    EXPECT_TRUE(many.back()->TryLock(kOwnByte, 1, LockKind::Shared)) << count;
  }
  EXPECT_FALSE(one_->TryLock(kOwnByte, 1, LockKind::Exclusive));
  many.clear();
  EXPECT_TRUE(one_->TryLock(kOwnByte, 1, LockKind::Exclusive));
}

}  // namespace
}  // namespace tavi::access
