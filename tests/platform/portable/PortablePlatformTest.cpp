#include <gtest/gtest.h>

#include <ctime>
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

/// The local date and time of a moment.
Date DateOf(std::time_t moment) {
  const std::tm local = *std::localtime(&moment);
  const Date day = Date::FromCivil(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  return Date::AtSecond(day.DayNumber(), (local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec);
}

TEST(SystemClock, TellsTheTimeOfDayToTheSecond) {
  const std::time_t before = std::time(nullptr);
  const Date told = SystemClock().Now();
  EXPECT_GE(told, DateOf(before));
  EXPECT_LE(told, DateOf(std::time(nullptr)));
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
