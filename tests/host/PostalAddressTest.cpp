#include "host/imports/MemberFields.h"

#include <gtest/gtest.h>

namespace tavi::host {
namespace {

using Part = std::optional<std::string>;

/// The changed address, after making sure that the same change once more changes nothing.
std::string Changed(const std::string& stored, const Part& address, const Part& town) {
  const std::string changed = ChangedAddress(stored, {address, town});
  EXPECT_EQ(ChangedAddress(changed, {address, town}), changed) << stored;
  return changed;
}

TEST(PostalAddress, WithBothPartsIsReplaced) {
  EXPECT_EQ(Changed("a\r\nb", "c", "d"), "c\r\nd");
  EXPECT_EQ(Changed("a\r\nb", "c\r\nd", ""), "c\r\nd");
  EXPECT_EQ(Changed("a\r\nb", "", "d"), "d");
  EXPECT_EQ(Changed("a\r\nb", "", ""), "");
}

TEST(PostalAddress, WithoutATownInTheFileKeepsTheLastOfSeveralLines) {
  EXPECT_EQ(Changed("a\r\nTown", "c", std::nullopt), "c\r\nTown");
  EXPECT_EQ(Changed("a\r\nTown", "c\r\nd", std::nullopt), "c\r\nd\r\nTown");
  EXPECT_EQ(Changed("a\r\nTown", "c\r\nTown", std::nullopt), "c\r\nTown");
  EXPECT_EQ(Changed("a\r\nTown", "a\r\nTown", std::nullopt), "a\r\nTown");
  EXPECT_EQ(Changed("a", "c", std::nullopt), "c");
  EXPECT_EQ(Changed("a\r\nTown", "", std::nullopt), "");
}

TEST(PostalAddress, WithoutAnAddressInTheFileKeepsTheOtherLines) {
  EXPECT_EQ(Changed("a\r\nTown", std::nullopt, "Upton"), "a\r\nUpton");
  EXPECT_EQ(Changed("a\r\nb\r\nTown", std::nullopt, "Upton"), "a\r\nb\r\nUpton");
  EXPECT_EQ(Changed("a", std::nullopt, "Upton"), "a\r\nUpton");
  EXPECT_EQ(Changed("", std::nullopt, "Upton"), "Upton");
  EXPECT_EQ(Changed("a\r\nTown", std::nullopt, ""), "a");
  EXPECT_EQ(Changed("a\r\nb\r\nTown", std::nullopt, ""), "a\r\nb\r\nTown");
}

// The town was lost: the empty line behind it was taken for one.
TEST(PostalAddress, LinesWithoutContentsAtItsEndAreNoTown) {
  EXPECT_EQ(Changed("a\r\nTown\r\n", "c", std::nullopt), "c\r\nTown");
  EXPECT_EQ(Changed("a\r\nTown\r\n\r\n", std::nullopt, "Upton"), "a\r\nUpton");
  EXPECT_EQ(Changed("a\r\nTown\r\n", std::nullopt, ""), "a");
  for (const Part& address : {Part("a"), Part()})
    EXPECT_EQ(Changed("a\r\nTown\r\n", address, "Town"), "a\r\nTown\r\n") << "nothing is changed";
}

TEST(PostalAddress, StaysWhereTheFileHasNeither) {
  EXPECT_EQ(Changed("a\r\nTown", std::nullopt, std::nullopt), "a\r\nTown");
}

}  // namespace
}  // namespace tavi::host
