#include "host/json/Json.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace tavi::host {
namespace {

TEST(Json, APairOfTextAndValueIsAMemberAllElseIsAnArray) {
  EXPECT_EQ(Json({{"a", 1}, {"b", {2, 3}}}).Compact(), R"({"a":1,"b":[2,3]})");
  EXPECT_EQ(Json({"a", "b"}).Compact(), R"(["a","b"])");
  EXPECT_EQ(Json({{{"a", 1}}, 2}).Compact(), R"([{"a":1},2])");
  EXPECT_EQ(Json::Array({{"a", 1}}).Compact(), R"([["a",1]])");
  EXPECT_EQ(Json(std::vector<std::string>{"a", "b"}).Compact(), R"(["a","b"])");
}

TEST(Json, ScalarsAreWrittenAsTheyAre) {
  const Json all = {nullptr, true, -7, 18446744073709551615U, 0.1, 50.0, "\"\n\\", std::string("Łódź")};
  EXPECT_EQ(all.Compact(), R"([null,true,-7,18446744073709551615,0.1,50.0,"\"\n\\","Łódź"])");
  EXPECT_EQ(Json("Łx").CompactAscii(), R"("\u0141x")");
  EXPECT_EQ(Json("\xC3").Compact(), "\"\xEF\xBF\xBD\"") << "no UTF-8";
  EXPECT_EQ(Json(std::numeric_limits<double>::infinity()).Compact(), "null");
}

TEST(Json, IndentedHasALineForEachPart) {
  const Json json = {{"a", Json::Array()}, {"b", {1, {{"c", nullptr}}}}, {"d", Json::Object()}};
  EXPECT_EQ(json.Indented(),
            "{\n  \"a\": [],\n  \"b\": [\n    1,\n    {\n      \"c\": null\n    }\n  ],\n  \"d\": {}\n}");
}

TEST(Json, WhatIsReadIsWrittenTheSame) {
  for (const char* text : {"null", "[]", "{}", R"({"z":1,"a":[true,{"b":"x"}],"m":-0.5})", "9223372036854775808",
                           "-9223372036854775808", "1e+300", R"([[],[[]],{"":""}])"}) {
    EXPECT_EQ(Json::Parse(text).Compact(), text);
  }
  EXPECT_EQ(Json::Parse(R"({"a":1,"a":2})").Compact(), R"({"a":2})") << "the last of a name counts";
}

TEST(Json, WhatIsNoJsonIsRefusedWithItsPlace) {
  for (const char* text : {"", "[1,]", "{\"a\"}", "nul", "[1] 2", "\"\xC3\"", "[1e999]"}) {
    EXPECT_THROW(static_cast<void>(Json::Parse(text)), JsonError) << text;
  }
  try {
    static_cast<void>(Json::Parse("[1,\n2,,]"));
  } catch (const JsonError& error) {
    EXPECT_NE(std::string(error.what()).find("line 2, column 3"), std::string::npos) << error.what();
  }
}

TEST(Json, NumbersAreEqualByValueAndObjectsWithTheirOrder) {
  EXPECT_EQ(Json(1), Json(1.0));
  EXPECT_NE(Json(-1), Json(18446744073709551615U));
  EXPECT_NE(Json(1), Json(true));
  EXPECT_NE(Json("1"), Json(1));
  EXPECT_EQ(Json({{"a", 1}, {"b", 2}}), Json({{"a", 1}, {"b", 2}}));
  EXPECT_NE(Json({{"a", 1}, {"b", 2}}), Json({{"b", 2}, {"a", 1}}));
  EXPECT_NE(Json({1, 2}), Json({1, 2, 3}));
}

TEST(Json, MembersAreFoundSetAndAdded) {
  Json json;
  EXPECT_TRUE(json.empty());
  json["a"] = 1;
  json["b"]["c"] = "x";
  json["a"] = 2;
  EXPECT_EQ(json.Compact(), R"({"a":2,"b":{"c":"x"}})");
  EXPECT_EQ(json.Find("c"), nullptr);
  EXPECT_EQ(json.NameAt(1), "b");
  EXPECT_THROW(static_cast<void>(json.at("c")), std::out_of_range);
  EXPECT_THROW(static_cast<void>(json.at("a").Text()), std::logic_error);
}

}  // namespace
}  // namespace tavi::host
