#include <gtest/gtest.h>

#include "access/sql/expression/Operators.h"
#include "platform/values/Error.h"

namespace tavi::access::sql {
namespace {

struct LikeCase {
  std::string_view text;
  std::string_view pattern;
  bool matches;
};

TEST(LikePattern, MatchesAsDescribed) {
  const LikeCase cases[] = {
      {"Smith", "smith", true},
      {"Smith", "Smit", false},
      {"Smith", "S*", true},
      {"Smith", "S%", true},
      {"Smith", "*ith", true},
      {"Smith", "%m%t%", true},
      {"Smith", "Sm?th", true},
      {"Smith", "Sm_th", true},
      {"Smth", "Sm?th", false},
      {"Smith", "[a-s]*", true},
      {"Smith", "[A-R]*", false},
      {"Smith", "[!a-r]*", true},
      {"Smith", "[!S]*", false},
      {"a1", "a#", true},
      {"ab", "a#", false},
      {"", "", true},
      {"", "*", true},
      {"", "?", false},
      {"", "**", true},
      {"50%", "50[%]", true},
      {"500", "50[%]", false},
      {"a*b", "a[*]b", true},
      {"axb", "a[*]b", false},
      {"a[b", "a[[]b", true},
      {"a]b", "a]b", true},
      {"-", "[-]", true},
      {"b", "[a-]", false},
      {"-", "[a-]", true},
      {"-", "[-a]", true},
      {"a!", "a[!]", true},
      {"ab", "a[]b", true},
      {"Éloïse", "é*", true},
      {"Éloïse", "?loïse", true},
      {"Éloïse", "e*", false},
      {"ÉLOÏSE", "éloïse", true},
      {"é", "[É]", true},
      {"aaab", "*aab", true},
      {"abcabd", "*abd", true},
      {"mississippi", "*iss*ip*", true},
      {"mississippi", "*iss*x", false},
      {"Łukasz", "ł*sz", true},
      {"a\nb", "a?b", true},
  };
  for (const LikeCase& one : cases) {
    EXPECT_EQ(LikePattern(one.pattern).Matches(one.text), one.matches) << one.text << " Like " << one.pattern;
  }
}

TEST(LikePattern, ManyStarsDoNotTakeForever) {
  const std::string text(5000, 'a');
  std::string pattern;
  for (int i = 0; i < 200; ++i) pattern += "*a";
  EXPECT_TRUE(LikePattern(pattern).Matches(text));
  EXPECT_FALSE(LikePattern(pattern + "b").Matches(text));
}

TEST(LikePattern, ABadSetIsRefused) {
  EXPECT_THROW(LikePattern("a[bc"), Error);
  EXPECT_THROW(LikePattern("[z-a]"), Error);
  EXPECT_THROW(LikePattern("["), Error);
}

/// Tries every way; slow, but plainly right.
bool MatchesNaively(std::string_view text, std::string_view pattern) {
  if (pattern.empty()) return text.empty();
  if (pattern[0] == '*') {
    return MatchesNaively(text, pattern.substr(1)) || (!text.empty() && MatchesNaively(text.substr(1), pattern));
  }
  return !text.empty() && (pattern[0] == '?' || pattern[0] == text[0]) &&
         MatchesNaively(text.substr(1), pattern.substr(1));
}

/// All texts of up to `length` of these letters.
std::vector<std::string> AllTexts(std::string_view letters, std::size_t length) {
  std::vector<std::string> texts = {""};
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (texts[i].size() == length) break;
    for (const char letter : letters) texts.push_back(texts[i] + letter);
  }
  return texts;
}

TEST(LikePattern, AgreesWithTryingEveryWayOnAllSmallPatterns) {
  const std::vector<std::string> texts = AllTexts("ab", 5);
  for (const std::string& pattern : AllTexts("ab?*", 5)) {
    const LikePattern compiled(pattern);
    for (const std::string& text : texts) {
      ASSERT_EQ(compiled.Matches(text), MatchesNaively(text, pattern)) << text << " Like " << pattern;
    }
  }
}

}  // namespace
}  // namespace tavi::access::sql
