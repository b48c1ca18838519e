#include "util/Paths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/TemporaryFolder.h"
#include "platform/support/ThisSystem.h"
#include "platform/values/Error.h"
#include "util/Diagnostics.h"

namespace tavi {
namespace {

using testing::DiagnosticsLog;
using testing::TemporaryFolder;

TEST(PathJoin, PutsOneSeparatorBetweenFolderAndFile) {
  EXPECT_EQ(PathJoin("C:\\Data\\", "ClubMembers.mdb"), "C:\\Data\\ClubMembers.mdb");
  EXPECT_EQ(PathJoin("C:\\Data", "ClubMembers.mdb"), "C:\\Data\\ClubMembers.mdb");
  EXPECT_EQ(PathJoin("/home/ann/", "ClubMembers.mdb"), "/home/ann/ClubMembers.mdb");
  EXPECT_EQ(PathJoin("/home/ann", "ClubMembers.mdb"), "/home/ann\\ClubMembers.mdb");
  EXPECT_EQ(PathJoin("", "ClubMembers.mdb"), "ClubMembers.mdb");
  EXPECT_EQ(PathJoin("a", "b", "/"), "a/b");
  EXPECT_EQ(PathJoin("C:", "b"), "C:\\b");
}

TEST(IsSameFile, TakesTextsThatDifferInCaseAndSeparatorsForOne) {
  EXPECT_TRUE(IsSameFile("C:\\Data\\ClubMembers.mdb", "c:/data/CLUBMEMBERS.MDB"));
  EXPECT_FALSE(IsSameFile("C:\\Data\\ClubMembers.mdb", "C:\\Data\\ClubMembers.mdb.redo"));
  EXPECT_FALSE(IsSameFile("", "C:\\Data\\ClubMembers.mdb"));
}

TEST(IsSameFile, LooksAtTheDisk) {
  const TemporaryFolder folder;
  folder.WriteFile("one", "same");
  folder.WriteFile("two", "same");
  EXPECT_FALSE(IsSameFile(folder.Path("one"), folder.Path("two")));
  EXPECT_TRUE(IsSameFile(folder.Path("one"), folder.Path() + "/./one"));
  std::filesystem::create_hard_link(folder.Path("one"), folder.Path("three"));
  EXPECT_TRUE(IsSameFile(folder.Path("one"), folder.Path("three")));
  EXPECT_FALSE(IsSameFile(folder.Path("one"), std::string_view("one\0", 4)));
}

TEST(ParentPath, CutsAtTheLastSeparatorOfAnyKind) {
  EXPECT_EQ(ParentPath("C:\\Data\\Old.mdb"), "C:\\Data");
  EXPECT_EQ(ParentPath("C:/Data/Old.mdb"), "C:/Data");
  EXPECT_EQ(ParentPath("C:\\Data\\"), "C:\\Data");
  EXPECT_EQ(ParentPath("C:Old.mdb"), "C");
  EXPECT_EQ(ParentPath(":"), "");
  EXPECT_EQ(ParentPath("C:"), "") << "nothing is above a drive";
}

TEST(ParentPath, RefusesAPathWithoutSeparators) {
  try {
    static_cast<void>(ParentPath("Old.mdb"));
    FAIL();
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::InvalidArgument));
  }
  EXPECT_THROW(static_cast<void>(ParentPath("")), Error);
}

TEST(NativePath, TurnsBackslashesAndDrivesIntoFolders) {
  EXPECT_EQ(NativePath("C:\\Diagnostics\\Tallyman.txt", "/root"), "/root/c/Diagnostics/Tallyman.txt");
  EXPECT_EQ(NativePath("d:Data", "/root"), "/root/d/Data");
  EXPECT_EQ(NativePath("C:", "/root"), "/root/c");
  EXPECT_EQ(NativePath("/home/ann\\Bridge\\Database", "/root"), "/home/ann/Bridge/Database");
  EXPECT_EQ(NativePath("relative\\file", "/root"), "relative/file");
  EXPECT_EQ(NativePath("", "/root"), "");
  EXPECT_EQ(NativePath("1:\\x", "/root"), "1:/x");
}

TEST(FileExists, IsTrueForFilesOnly) {
  const TemporaryFolder folder;
  folder.WriteFile("Éloïse.mdb", "x");
  EXPECT_TRUE(FileExists(folder.Path() + "\\Éloïse.mdb"));
  EXPECT_FALSE(FileExists(folder.Path()));
  EXPECT_FALSE(FileExists(folder.Path("none")));
  EXPECT_FALSE(FileExists(""));
  EXPECT_FALSE(FileExists(folder.Path("Éloïse.mdb") + "\\below a file"));
  EXPECT_FALSE(FileExists(std::string(100000, 'x')));
}

TEST(WriteDiagnostic, AppendsLinesOnceTheFolderIsThere) {
  const DiagnosticsLog log;
  log.SwitchOff();
  WriteDiagnostic("nobody listens");
  EXPECT_FALSE(log.IsThere());
  log.SwitchOn();
  WriteDiagnostic("First line");
  WriteDiagnostic("");
  WriteDiagnostic("Łukasz");
  EXPECT_EQ(log.Text(), "First line\r\n\r\nŁukasz\r\n");
}

TEST(WriteDiagnostic, LosesAndMixesNoLineOfThreadsThatWriteAtOnce) {
  constexpr int kThreads = 4;
  constexpr int kEach = 100;
  const DiagnosticsLog log;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([] {
      for (int count = 0; count < kEach; ++count) WriteDiagnostic("one line");
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::string lines;
  for (int count = 0; count < kThreads * kEach; ++count) lines += "one line\r\n";
  EXPECT_TRUE(log.Text() == lines) << log.Text().size() << " bytes instead of " << lines.size();
}

TEST(WriteDiagnostic, DropsALineThatCannotBeWritten) {
  const DiagnosticsLog log;
  std::filesystem::create_directory(log.File());
  EXPECT_NO_THROW(WriteDiagnostic("a folder is in the way"));
}

}  // namespace
}  // namespace tavi
