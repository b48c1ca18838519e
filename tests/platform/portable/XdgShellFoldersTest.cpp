#include "platform/portable/PortableServices.h"

#include <gtest/gtest.h>

#include <map>

#include "platform/TemporaryFolder.h"

namespace tavi {
namespace {

using testing::TemporaryFolder;
using Variables = std::map<std::string, std::string>;

XdgShellFolders ShellWith(Variables variables) {
  return XdgShellFolders([variables = std::move(variables)](const std::string& name) -> std::optional<std::string> {
    const auto found = variables.find(name);
    return found == variables.end() ? std::nullopt : std::optional<std::string>(found->second);
  });
}

TEST(XdgShellFolders, DocumentsAreInTheHomeFolderWhenNothingElseIsSaid) {
  const TemporaryFolder home;
  EXPECT_EQ(ShellWith({{"HOME", home.Path()}}).FolderPath(5), home.Path("Documents"));
  EXPECT_FALSE(home.Has("Documents")) << "asking creates nothing";
}

TEST(XdgShellFolders, DocumentsAreWhereTheUserDirectoriesSay) {
  const TemporaryFolder home;
  home.WriteFile(".config/user-dirs.dirs",
                 "# a comment\nXDG_MUSIC_DIR=\"$HOME/Music\"\n  XDG_DOCUMENTS_DIR=\"$HOME/Dokumente \\\"neu\\\"/\"\n");
  EXPECT_EQ(ShellWith({{"HOME", home.Path()}}).FolderPath(5), home.Path("Dokumente \"neu\""));
  home.WriteFile("other/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"/srv/documents\"\n");
  EXPECT_EQ(ShellWith({{"HOME", home.Path()}, {"XDG_CONFIG_HOME", home.Path("other")}}).FolderPath(5),
            "/srv/documents");
}

TEST(XdgShellFolders, UnusableUserDirectoriesAreIgnored) {
  const TemporaryFolder home;
  home.WriteFile(".config/user-dirs.dirs",
                 "XDG_DOCUMENTS_DIR=\"relative\"\nXDG_DOCUMENTS_DIR=\"$HOME/open\nXDG_DOCUMENTS_DIR=none\n");
  EXPECT_EQ(ShellWith({{"HOME", home.Path()}}).FolderPath(5), home.Path("Documents"));
}

TEST(XdgShellFolders, FolderThirtyFiveIsTheConfigurationFolder) {
  EXPECT_EQ(ShellWith({{"HOME", "/home/ann"}}).FolderPath(35), "/home/ann/.config");
  EXPECT_EQ(ShellWith({{"HOME", "/home/ann"}, {"XDG_CONFIG_HOME", "/etc/own/"}}).FolderPath(35), "/etc/own");
  EXPECT_EQ(ShellWith({{"HOME", "/home/ann"}, {"XDG_CONFIG_HOME", "relative"}}).FolderPath(35), "/home/ann/.config");
}

TEST(XdgShellFolders, TheCreateBitCreatesTheFolder) {
  const TemporaryFolder home;
  EXPECT_EQ(ShellWith({{"HOME", home.Path()}}).FolderPath(35 | 0x8000), home.Path(".config"));
  EXPECT_TRUE(home.Has(".config"));
  home.WriteFile("Documents", "a file stands in the way");
  EXPECT_FALSE(ShellWith({{"HOME", home.Path()}}).FolderPath(5 | 0x8000).has_value());
}

TEST(XdgShellFolders, ThereAreNoCommonDocumentsAndNoSecondWayOfAsking) {
  const XdgShellFolders shell = ShellWith({{"HOME", "/home/ann"}});
  EXPECT_FALSE(shell.FolderPath(46).has_value());
  EXPECT_FALSE(shell.FolderPath(0).has_value());
  EXPECT_FALSE(shell.FolderLocation(5).has_value());
}

TEST(XdgShellFolders, WithoutAHomeThereIsNoFolder) {
  EXPECT_FALSE(ShellWith({}).FolderPath(5).has_value());
  EXPECT_FALSE(ShellWith({}).FolderPath(35).has_value());
  EXPECT_FALSE(ShellWith({{"HOME", ""}}).FolderPath(5).has_value());
}

}  // namespace
}  // namespace tavi
