#include <gtest/gtest.h>

#include <sstream>

#include "platform/TemporaryFolder.h"
#include "platform/portable/Clocks.h"
#include "platform/portable/ConsoleMessageBoxes.h"
#include "platform/portable/EmptyRegistry.h"
#include "platform/portable/XdgShellFolders.h"
#include "platform/values/Text.h"

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

TEST(SystemClock, TellsADayOfThisCenturyThatDoesNotRunBackwards) {
  const SystemClock clock;
  const Date first = clock.Now();
  EXPECT_GT(first, Date::FromCivil(2020, 1, 1));
  EXPECT_LT(first, Date::FromCivil(2100, 1, 1));
  EXPECT_GE(clock.Now(), first);
}

TEST(FixedClock, StandsStill) {
  const FixedClock clock(Date{36526.5});
  EXPECT_EQ(clock.Now(), Date{36526.5});
}

TEST(ConsoleMessageBoxes, WriteKindTitleAndText) {
  std::ostringstream stream;
  const ConsoleMessageBoxes boxes(stream);
  boxes.Show(MessageBoxIcon::Information, "Database Update Required", "First line\r\nSecond line");
  boxes.Show(MessageBoxIcon::Exclamation, "T", "w");
  boxes.Show(MessageBoxIcon::Critical, "T", "e");
  EXPECT_EQ(stream.str(), "Note: Database Update Required\nFirst line\nSecond line\nWarning: T\nw\nError: T\ne\n");
}

TEST(ConsoleMessageBoxes, LeaveOutControlCharactersThatAFileMightHold) {
  std::ostringstream stream;
  ConsoleMessageBoxes(stream).Show(MessageBoxIcon::Information, "a\x1B[2Jb", "Éloïse\x07\x7F");
  EXPECT_EQ(stream.str(), "Note: a[2Jb\nÉloïse\n");
}

TEST(EmptyRegistry, HasNoValue) {
  EXPECT_FALSE(EmptyRegistry().ReadText(RegistryRoot::LocalMachine, "Software", "DB Folder").has_value());
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
