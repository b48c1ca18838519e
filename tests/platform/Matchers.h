#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

/// EXPECT_THAT for texts and lists of texts. GoogleMock's is for everything, which each file that uses it pays for with
/// half a second of compiling or more.
namespace tavi::testing {

/// What a text, or a list of texts, is to be like. Made by the functions below.
class Matcher {
 public:
  enum class Kind { Contains, StartsWith, EndsWith, IsEmpty, Elements, ElementsInAnyOrder, AmongElements, Not, AllOf };

  Matcher(Kind kind, std::vector<std::string> texts) : kind_(kind), texts_(std::move(texts)) {}
  Matcher(Kind kind, std::vector<Matcher> parts) : kind_(kind), parts_(std::move(parts)) {}

  [[nodiscard]] bool Takes(const std::string& text) const;
  [[nodiscard]] bool Takes(const std::vector<std::string>& texts) const;
  /// For people: "contains "x"".
  [[nodiscard]] std::string Words() const;

 private:
  Kind kind_;
  std::vector<std::string> texts_;
  std::vector<Matcher> parts_;
};

[[nodiscard]] Matcher HasSubstr(std::string part);
[[nodiscard]] Matcher StartsWith(std::string start);
[[nodiscard]] Matcher EndsWith(std::string end);
[[nodiscard]] Matcher IsEmpty();
[[nodiscard]] Matcher Not(Matcher part);
[[nodiscard]] Matcher AllOf(Matcher first, Matcher second);

template <typename... Texts>
[[nodiscard]] Matcher ElementsAre(Texts... texts) {
  return {Matcher::Kind::Elements, std::vector<std::string>{std::move(texts)...}};
}
template <typename... Texts>
[[nodiscard]] Matcher UnorderedElementsAre(Texts... texts) {
  return {Matcher::Kind::ElementsInAnyOrder, std::vector<std::string>{std::move(texts)...}};
}
/// Each of the texts is an element; there may be others.
[[nodiscard]] Matcher IsSupersetOf(std::vector<std::string> texts);

[[nodiscard]] ::testing::AssertionResult Fulfils(const char* expression, const char* expected, const std::string& text,
                                                 const Matcher& matcher);
[[nodiscard]] ::testing::AssertionResult Fulfils(const char* expression, const char* expected,
                                                 const std::vector<std::string>& texts, const Matcher& matcher);
[[nodiscard]] ::testing::AssertionResult Fulfils(const char* expression, const char* expected,
                                                 const std::set<std::string>& texts, const Matcher& matcher);

}  // namespace tavi::testing

#define EXPECT_THAT(value, matcher) EXPECT_PRED_FORMAT2(::tavi::testing::Fulfils, value, matcher)
