// The test file systems must be right before anything is proved with them.
#include "access/file/support/MemoryFileSystem.h"

#include <gtest/gtest.h>

#include <set>

#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

using Bytes = MemoryFileSystem::Bytes;
using OpenMode = FileSystem::OpenMode;

TEST(MemoryFileSystem, ReadsAndWrites) {
  MemoryFileSystem system;
  const auto file = system.Open("a", OpenMode::CreateNew);
  file->WriteAt(2, Bytes{1, 2, 3});
  EXPECT_EQ(system.Contents("a"), (Bytes{0, 0, 1, 2, 3}));
  Bytes read(2);
  file->ReadAt(3, read);
  EXPECT_EQ(read, (Bytes{2, 3}));
  EXPECT_THROW(file->ReadAt(4, read), Error);
  file->Truncate(1);
  EXPECT_EQ(file->Size(), 1u);
  EXPECT_THROW(static_cast<void>(system.Open("a", OpenMode::CreateNew)), Error);
  EXPECT_THROW(static_cast<void>(system.Open("b", OpenMode::ReadWrite)), Error);
}

TEST(MemoryFileSystem, LocksOfTwoOpenersExcludeEachOther) {
  MemoryFileSystem system;
  system.SetContents("a", {});
  const auto one = system.Open("a", OpenMode::ReadWrite);
  auto two = system.Open("a", OpenMode::ReadWrite);
  EXPECT_TRUE(one->TryLock(10, 10, File::LockKind::Shared));
  EXPECT_TRUE(two->TryLock(15, 10, File::LockKind::Shared));
  EXPECT_FALSE(two->TryLock(15, 10, File::LockKind::Exclusive));
  EXPECT_TRUE(two->TryLock(20, 5, File::LockKind::Exclusive));
  one->Unlock(15, 5);
  EXPECT_TRUE(two->TryLock(15, 10, File::LockKind::Exclusive));
  EXPECT_FALSE(two->TryLock(14, 1, File::LockKind::Exclusive));
  EXPECT_TRUE(one->IsLockedByOther(0, 100));
  two.reset();
  EXPECT_FALSE(one->IsLockedByOther(0, 100));
}

TEST(MemoryFileSystem, ACrashMayKeepOrDropWhatWasNotFlushed) {
  MemoryFileSystem system;
  const auto file = system.Open("a", OpenMode::CreateNew);
  system.SyncFolderOf("a");
  file->WriteAt(0, Bytes{1, 2});
  file->Sync();
  file->WriteAt(0, Bytes{3});
  static_cast<void>(system.Open("b", OpenMode::CreateNew));
  const auto kept = system.AfterCrash(CrashKind::Kept, 0);
  EXPECT_EQ(kept->Contents("a"), (Bytes{3, 2}));
  EXPECT_TRUE(kept->Exists("b"));
  const auto dropped = system.AfterCrash(CrashKind::Dropped, 0);
  EXPECT_EQ(dropped->Contents("a"), (Bytes{1, 2}));
  EXPECT_FALSE(dropped->Exists("b"));
}

TEST(MemoryFileSystem, ATornCrashGivesManyStates) {
  MemoryFileSystem system;
  const auto file = system.Open("a", OpenMode::CreateNew);
  system.SyncFolderOf("a");
  file->WriteAt(0, Bytes{1, 1, 1, 1});
  file->WriteAt(2, Bytes{2, 2, 2, 2});
  std::set<Bytes> states;
  for (std::uint32_t seed = 0; seed < 200; ++seed) {
    const auto torn = system.AfterCrash(CrashKind::Torn, seed);
    states.insert(torn->Contents("a"));
    EXPECT_EQ(torn->Contents("a"), system.AfterCrash(CrashKind::Torn, seed)->Contents("a"));
  }
  EXPECT_TRUE(states.contains(Bytes{}));
  EXPECT_TRUE(states.contains(Bytes{1, 1, 2, 2, 2, 2}));
  EXPECT_TRUE(states.contains(Bytes{0, 0, 2, 2, 2, 2}));
  EXPECT_EQ(states.size(), 4u);  // no sector is torn
}

TEST(MemoryFileSystem, ATornCrashKeepsAnySectors) {
  MemoryFileSystem system;
  const auto file = system.Open("a", OpenMode::CreateNew);
  file->WriteAt(0, Bytes(4 * kSectorSize, 1));
  file->Sync();
  system.SyncFolderOf("a");
  file->WriteAt(0, Bytes(4 * kSectorSize, 2));
  std::set<Bytes> states;
  for (std::uint32_t seed = 0; seed < 500; ++seed) {
    const Bytes torn = system.AfterCrash(CrashKind::Torn, seed)->Contents("a");
    Bytes sectors;
    for (std::size_t i = 0; i < 4; ++i) {
      sectors.push_back(torn[i * kSectorSize]);
      EXPECT_EQ(torn[i * kSectorSize], torn[(i + 1) * kSectorSize - 1]);
    }
    states.insert(sectors);
  }
  EXPECT_EQ(states.size(), 16u);
}

TEST(MemoryFileSystem, AFullDiskStoresWhatFits) {
  MemoryFileSystem system;
  const auto file = system.Open("a", OpenMode::CreateNew);
  system.SetCapacity(3);
  EXPECT_THROW(file->WriteAt(0, Bytes{1, 2, 3, 4}), Error);
  EXPECT_EQ(system.Contents("a"), (Bytes{1, 2, 3}));
  file->WriteAt(1, Bytes{9, 9});
  EXPECT_THROW(file->WriteAt(3, Bytes{1}), Error);
}

}  // namespace
}  // namespace tavi::access::test
