#include <gtest/gtest.h>

#include "host/support/Command.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;

TEST(CompactCommand, LaysTheClubsFileOutAnewAndKeepsTheOldOne) {
  const CommandFolder folder;
  ASSERT_EQ(folder.Run({"new", "--name", "Any"}).code, 0);
  const std::string csv = folder.Write("members.csv", "club_number,first,last\n1,Ann,Bee\n2,Cy,Dee\n");
  ASSERT_EQ(folder.Run({"members", "import", csv}).code, 0);
  const std::string members = folder.Run({"members"}).out;
  const auto bytes = std::to_string(fs::file_size(folder.ClubFile()));

  const Outcome outcome = folder.Run({"compact"});
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  const std::string backup = folder.Path("club/ClubMembers.backup-1.mdb");
  EXPECT_EQ(outcome.out, "What\tValue\nFile\t" + InCell(folder.ClubFile()) + "\nBytes before\t" + bytes +
                             "\nBytes after\t" + std::to_string(fs::file_size(folder.ClubFile())) + "\nBackup\t" +
                             InCell(backup) + "\n");
  EXPECT_EQ(folder.Run({"members"}).out, members);
  EXPECT_EQ(folder.Run({"check", "--strict"}).code, 0);
  const Outcome old = folder.Run({"sql", "--file", backup, "Select Count(*) As Members From Members"});
  EXPECT_EQ(old.out, "Members\n2\n") << old.error;
}

TEST(CompactCommand, SaysWhyItCannot) {
  const CommandFolder folder;
  const std::string text = folder.Write("letter.mdb", std::string(9000, 'x'));
  const Outcome outcome = folder.Run({"compact", text});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_NE(outcome.error.find("It is not an Access database."), std::string::npos) << outcome.error;
  EXPECT_FALSE(fs::exists(text + ".compact"));
}

}  // namespace
}  // namespace tavi::host
