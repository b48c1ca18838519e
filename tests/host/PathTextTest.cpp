#include "host/text/PathText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "host/support/Command.h"

namespace tavi::host {
namespace {

void ExpectParts(const std::string& path, const std::string& folder, const std::string& name) {
  const PathParts parts = SplitPath(path);
  EXPECT_EQ(parts.folder, folder) << path;
  EXPECT_EQ(parts.name, name) << path;
}

TEST(PathText, TakesTheLastNameOffAPath) {
  ExpectParts("/club/Zoë/ClubMembers.mdb", "/club/Zoë", "ClubMembers.mdb");
  ExpectParts("/ClubMembers.mdb", "/", "ClubMembers.mdb");
  ExpectParts("ClubMembers.mdb", "", "ClubMembers.mdb");
  ExpectParts("/club/", "/club", "");
#ifdef _WIN32
  ExpectParts("C:\\club/ClubMembers.mdb", "C:\\club", "ClubMembers.mdb");
  ExpectParts("C:\\ClubMembers.mdb", "C:\\", "ClubMembers.mdb");
  ExpectParts("\\\\server\\club\\Zoë", "\\\\server\\club", "Zoë");
#else
  ExpectParts("/club/a\\b", "/club", "a\\b");
#endif
}

TEST(PathText, GivesPathsFromTheRootOn) {
  const std::string here = TextOf(std::filesystem::current_path());
  EXPECT_EQ(SplitPath(AbsolutePath("Zoë")).folder, here);
  EXPECT_EQ(SplitPath(AbsolutePath("Zoë")).name, "Zoë");
  EXPECT_EQ(AbsolutePath("no/../other/./Łukasz"), AbsolutePath("other/Łukasz"));
#ifdef _WIN32
  EXPECT_EQ(AbsolutePath("//server/club/../Łukasz/x.mdb"), "\\\\server\\club\\Łukasz\\x.mdb");
  EXPECT_EQ(AbsolutePath("C:/club\\.\\Zoë"), "C:\\club\\Zoë");
#else
  EXPECT_EQ(AbsolutePath("/club/../Łukasz/x.mdb"), "/Łukasz/x.mdb");
#endif
}

TEST(PathText, MakesFoldersWithThoseThatTheyLieIn) {
  const CommandFolder folder;
  const std::string inner = folder.Path("Klüb/Łódź");
  EXPECT_EQ(MakeFolders(inner), std::error_code());
  EXPECT_TRUE(std::filesystem::is_directory(PathOf(inner)));
  EXPECT_EQ(MakeFolders(inner), std::error_code());
  const std::string file = folder.Write("file", "x");
  EXPECT_NE(MakeFolders(file), std::error_code());
  const std::error_code failure = MakeFolders(folder.Path("file/folder"));
  EXPECT_NE(failure, std::error_code());
  EXPECT_FALSE(ReasonOf(failure).empty());
}

TEST(PathText, JoinsAFolderAndAName) {
  EXPECT_EQ(JoinPath("", "Zoë"), "Zoë");
  EXPECT_EQ(JoinPath("/", "Zoë"), "/Zoë");
  EXPECT_EQ(SplitPath(JoinPath("/club", "Zoë")).folder, "/club");
  EXPECT_EQ(SplitPath(JoinPath("/club", "Zoë")).name, "Zoë");
}

TEST(PathText, NamesWhatLiesInAFolderHoweverLongItsPath) {
  const CommandFolder folder;
  std::string path = folder.Path("long");
  for (int depth = 0; depth < 4; ++depth) path = JoinPath(path, std::string(90, 'n'));
  ASSERT_EQ(MakeFolders(JoinPath(path, "inner")), std::error_code());
  std::ofstream(PathOf(JoinPath(path, "Łukasz"))) << "x";
  std::error_code failure;
  std::vector<std::string> names = NamesIn(path, failure);
  std::ranges::sort(names);
  EXPECT_EQ(names, (std::vector<std::string>{"inner", "Łukasz"}));
  EXPECT_EQ(failure, std::error_code());
  RemoveAll(folder.Path("long"));
  EXPECT_FALSE(std::filesystem::exists(PathOf(folder.Path("long"))));
  EXPECT_TRUE(NamesIn(folder.Path("long"), failure).empty());
  EXPECT_NE(failure, std::error_code());
}

#ifndef _WIN32
TEST(PathText, RemovesALinkAndNotWhereItLeads) {
  const CommandFolder folder;
  ASSERT_EQ(MakeFolders(folder.Path("club")), std::error_code());
  ASSERT_EQ(MakeFolders(folder.Path("work")), std::error_code());
  folder.Write("club/ClubMembers.mdb", "x");
  std::filesystem::create_directory_symlink(folder.Path("club"), folder.Path("work/link"));
  RemoveAll(folder.Path("work"));
  EXPECT_FALSE(std::filesystem::exists(folder.Path("work")));
  EXPECT_TRUE(std::filesystem::exists(folder.Path("club/ClubMembers.mdb")));
}
#endif

}  // namespace
}  // namespace tavi::host
