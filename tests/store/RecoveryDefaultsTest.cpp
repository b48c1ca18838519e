#include "store/TableRecovery.h"

#include <gtest/gtest.h>

#include "platform/values/Error.h"

namespace tavi {
namespace {

TEST(RecoveryDefaultsTest, DefaultsAreKeptByLowerCaseNames) {
  EXPECT_EQ(ParseDefaults(""), ColumnDefaults{});
  EXPECT_EQ(ParseDefaults("IsTeams=0, NatCode = EBU "), (ColumnDefaults{{"isteams", "0"}, {"natcode", "EBU"}}));
  EXPECT_EQ(ParseDefaults("A=b=c"), (ColumnDefaults{{"a", "b=c"}})) << "split at the first sign";
  EXPECT_EQ(ParseDefaults("Affiliation="), (ColumnDefaults{{"affiliation", ""}}));
}

TEST(RecoveryDefaultsTest, AnItemWithoutAValueIsAnError) {
  for (const char* text : {"IsTeams", "IsTeams=0,", "IsTeams=0,,IsSwiss=0", " "}) {
    try {
      static_cast<void>(ParseDefaults(text));
      ADD_FAILURE() << text;
    } catch (const Error& error) {
      EXPECT_EQ(error.Source(), "Recovery");
      EXPECT_EQ(error.Description(), "Illegal defaults setting");
    }
  }
}

}  // namespace
}  // namespace tavi
