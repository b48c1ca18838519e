#include "names/NameMatching.h"

#include <gtest/gtest.h>

#include "names/NameKeys.h"

namespace tavi {
namespace {

class Keys : public NameKeyService {
 public:
  [[nodiscard]] std::string Key(NameKeyMode mode, std::string_view name) const override {
    return mode == NameKeyMode::Surname ? SurnameKey(name) : FirstNameKey(name);
  }
};

std::string Reason(const char* typed, const char* stored) {
  const auto keys = std::make_shared<Keys>();
  cPlayerDetails own(keys);
  own.SetName(typed);
  cPlayerDetails member(keys);
  member.SetName(stored);
  return MatchReason(own, member);
}

TEST(MatchReasons, SayWhatDiffersTheSurnameFirst) {
  EXPECT_EQ(Reason("Kate Smith", "KATE SMITH"), "same name");
  EXPECT_EQ(Reason("Kate Smyth", "Katherine Smith"), "surname sounds alike, first name is short for Katherine");
  EXPECT_EQ(Reason("Katherine Smith", "Kate Smith"), "first name is long for Kate");
  EXPECT_EQ(Reason("Catherine Smith", "Katherine Smith"), "first name sounds alike");
  EXPECT_EQ(Reason("Kate Smyth", "Kate Smith"), "surname sounds alike");
}

TEST(MatchReasons, NameInitialsAndMissingParts) {
  EXPECT_EQ(Reason("J Smith", "John Smith"), "first name is an initial");
  EXPECT_EQ(Reason("John", "John Smith"), "surname is missing");
  EXPECT_EQ(Reason("John A Smith", "John AB Smith"), "initials fit");
  EXPECT_EQ(Reason("John A Smith", "John Smith"), "initials are missing");
  EXPECT_EQ(Reason("John Smith", "John A Smith"), "initials are missing");
}

TEST(MatchReasons, OfUnlikeNamesSaySo) {
  EXPECT_EQ(Reason("John Smith", "Mary Brown"), "different name");
  EXPECT_EQ(Reason("", ""), "different name");
}

}  // namespace
}  // namespace tavi
