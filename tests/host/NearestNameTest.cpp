#include "host/text/NearestName.h"

#include <gtest/gtest.h>

namespace tavi::host {
namespace {

const std::vector<std::string> kNames = {"club_number", "first", "last", "email", "sex"};

TEST(NearestName, IsTheOneWithTheFewestSlips) {
  EXPECT_EQ(NearestName("emial", kNames), "email");
  EXPECT_EQ(NearestName("E-Mail", kNames), "email");
  EXPECT_EQ(NearestName("firstname", kNames), "first");
  EXPECT_EQ(NearestName("clubnumber", kNames), "club_number");
  EXPECT_EQ(NearestName("se", {"sexes"}), "");
  EXPECT_EQ(NearestName("na", {"name"}), "name") << "a short beginning";
}

TEST(NearestName, IsEmptyWhereNoneIsNear) {
  EXPECT_EQ(NearestName("subscription", kNames), "");
  EXPECT_EQ(NearestName("", kNames), "");
  EXPECT_EQ(NearestName("abc", {}), "");
}

}  // namespace
}  // namespace tavi::host
