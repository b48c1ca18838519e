#include "util/Paths.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/TemporaryFolder.h"
#include "platform/values/Error.h"
#include "util/Diagnostics.h"
#include "util/NativePath.h"

namespace tavi {
namespace {

using testing::TemporaryFolder;

/// Sends drive letters to a folder of the test.
class DrivesIn {
 public:
  explicit DrivesIn(const std::string& folder) { setenv("TAVI_DRIVES", folder.c_str(), 1); }
  ~DrivesIn() { unsetenv("TAVI_DRIVES"); }
  DrivesIn(const DrivesIn&) = delete;
  DrivesIn& operator=(const DrivesIn&) = delete;
};

TEST(PathJoin, PutsOneSeparatorBetweenFolderAndFile) {
  EXPECT_EQ(PathJoin("C:\\Data\\", "ClubMembers.mdb"), "C:\\Data\\ClubMembers.mdb");
  EXPECT_EQ(PathJoin("C:\\Data", "ClubMembers.mdb"), "C:\\Data\\ClubMembers.mdb");
  EXPECT_EQ(PathJoin("/home/ann/", "ClubMembers.mdb"), "/home/ann/ClubMembers.mdb");
  EXPECT_EQ(PathJoin("/home/ann", "ClubMembers.mdb"), "/home/ann\\ClubMembers.mdb");
  EXPECT_EQ(PathJoin("", "ClubMembers.mdb"), "ClubMembers.mdb");
  EXPECT_EQ(PathJoin("a", "b", "/"), "a/b");
  EXPECT_EQ(PathJoin("C:", "b"), "C:\\b");
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

TEST(NativePath, TakesTheRootOfDrivesFromTheEnvironment) {
  const DrivesIn drives("/club");
  EXPECT_EQ(NativePath("C:\\My Documents"), "/club/c/My Documents");
}

TEST(NativePath, DrivesAreInTheUsersDataFolderByDefault) {
  setenv("HOME", "/home/ann", 1);
  EXPECT_EQ(NativePath("C:\\x"), "/home/ann/.local/share/tavimembership/c/x");
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
  const TemporaryFolder folder;
  const DrivesIn drives(folder.Path());
  WriteDiagnostic("nobody listens");
  EXPECT_FALSE(folder.Has("c"));
  folder.MakeFolder("c/Diagnostics");
  WriteDiagnostic("First line");
  WriteDiagnostic("");
  WriteDiagnostic("Łukasz");
  EXPECT_EQ(folder.ReadFile("c/Diagnostics/Tallyman.txt"), "First line\r\n\r\nŁukasz\r\n");
}

TEST(WriteDiagnostic, DropsALineThatCannotBeWritten) {
  const TemporaryFolder folder;
  const DrivesIn drives(folder.Path());
  folder.MakeFolder("c/Diagnostics/Tallyman.txt");
  EXPECT_NO_THROW(WriteDiagnostic("a folder is in the way"));
}

}  // namespace
}  // namespace tavi
