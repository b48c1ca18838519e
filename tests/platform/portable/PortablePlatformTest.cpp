#include <gtest/gtest.h>

#include <sstream>

#include "platform/portable/PortableServices.h"

namespace tavi {
namespace {

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

}  // namespace
}  // namespace tavi
