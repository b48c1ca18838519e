#include "store/RecoveryTask.h"

#include <gtest/gtest.h>

#include "platform/values/Error.h"

namespace tavi {
namespace {

using Defaults = std::map<std::string, std::string>;

TEST(RecoverySpecificationTest, ATableMayNameItsIdentifier) {
  EXPECT_EQ(ParseTableSpecification("Members").table, "Members");
  EXPECT_EQ(ParseTableSpecification("Members").identifier, "");
  EXPECT_EQ(ParseTableSpecification("Competitions: ID ").table, "Competitions");
  EXPECT_EQ(ParseTableSpecification("Competitions: ID ").identifier, "ID");
  EXPECT_EQ(ParseTableSpecification("A:B:C").identifier, "B:C") << "two pieces at most";
}

TEST(RecoverySpecificationTest, DefaultsAreKeptByLowerCaseNames) {
  EXPECT_EQ(ParseDefaults(""), Defaults{});
  EXPECT_EQ(ParseDefaults("IsTeams=0, NatCode = EBU "), (Defaults{{"isteams", "0"}, {"natcode", "EBU"}}));
  EXPECT_EQ(ParseDefaults("A=b=c"), (Defaults{{"a", "b=c"}})) << "split at the first sign";
  EXPECT_EQ(ParseDefaults("Affiliation="), (Defaults{{"affiliation", ""}}));
}

TEST(RecoverySpecificationTest, AnItemWithoutAValueIsAnError) {
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
