#include "host/scoring/MemberDirectory.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "names/NameSounds.h"
#include "platform/values/Text.h"
#include "util/TextHelpers.h"

// Names as scorers write them, brought to one form. Folding goes letter by letter: upper case, no accents, nothing but
// letters and figures, words joined, so that "Mary-Ann O'Neil", "MARY ANN ONEIL" and "Mary Ann O’Neil" are one text. It
// is for comparing only; a folded name is never stored or shown.
//
// "Seán MacDonald" becomes SEANMCDONALD, "Müller" MULLER, and "M?ller", as a file has it whose character set lacked the
// letter, M?LLER, in which the question mark fits any letter.
namespace tavi::host {
namespace {

/// Upper-case letters and what they are without their accents.
constexpr std::array<std::pair<std::u32string_view, std::string_view>, 27> kPlainLetters = {{
    {U"ÀÁÂÃÄÅĀĂĄǍ", "A"}, {U"ÆǼ", "AE"},        {U"ÇĆĈĊČ", "C"}, {U"ĎĐÐ", "D"},   {U"ÈÉÊËĒĔĖĘĚ", "E"}, {U"ĜĞĠĢ", "G"},
    {U"ĤĦ", "H"},         {U"ÌÍÎÏĨĪĬĮİ", "I"},  {U"Ĵ", "J"},     {U"Ķ", "K"},     {U"ĹĻĽĿŁ", "L"},     {U"ÑŃŅŇ", "N"},
    {U"ÒÓÔÕÖØŌŎŐ", "O"},  {U"Œ", "OE"},         {U"ŔŖŘ", "R"},   {U"ŚŜŞŠȘ", "S"}, {U"ẞß", "SS"},       {U"ŢŤŦȚ", "T"},
    {U"Þ", "TH"},         {U"ÙÚÛÜŨŪŬŮŰŲ", "U"}, {U"ŴẀẂẄ", "W"},  {U"ÝŶŸỲ", "Y"},  {U"ŹŻŽ", "Z"},       {U"ƁƂ", "B"},
    {U"Ƒ", "F"},          {U"Ṁ", "M"},          {U"Ṗ", "P"},
}};

/// Letters of other scripts are their own.
std::string PlainLetter(char32_t letter) {
  if (letter < 0x80) return std::string(1, static_cast<char>(letter));
  for (const auto& [accented, plain] : kPlainLetters) {
    if (accented.find(letter) != std::u32string_view::npos) return std::string(plain);
  }
  return FromCodePoints(std::u32string(1, letter));
}

/// Accents that are characters of their own, as some programs write them behind the letter.
bool IsCombiningMark(char32_t c) {
  return c >= 0x0300 && c <= 0x036F;
}

/// Everything of ASCII that is neither letter, figure nor question mark, and the dashes, quotes and apostrophes that
/// editors put in place of the plain ones. The letter is in upper case already.
bool IsDropped(char32_t c) {
  const bool plainSymbol = c < 0x80 && c != U'?' && (c < U'0' || (c > U'9' && c < U'A') || c > U'Z');
  const bool quote = (c >= 0x2010 && c <= 0x2027) || c == 0x00B4 || c == 0x00A0 || c == 0x00AD || c == 0x02BC;
  return plainSymbol || quote || IsCombiningMark(c);
}

bool IsTitle(const std::string& word) {
  static constexpr std::array kTitles = {"MR",   "MRS",  "MS",   "MISS", "DR", "PROF", "REV", "SIR",
                                         "LADY", "LORD", "DAME", "MX",   "FR", "MAJ",  "COL", "CAPT"};
  const std::string upper = UpperCase(word);
  return std::find(kTitles.begin(), kTitles.end(), upper) != kTitles.end();
}

/// The pieces between blanks, however many of these there are.
std::vector<std::string> Words(const std::string& text) {
  std::vector<std::string> words;
  for (std::string& word : Split(text, ' ')) {
    if (!word.empty()) words.push_back(std::move(word));
  }
  return words;
}

}  // namespace

std::string FoldName(const std::string& name) {
  std::string folded;
  for (const std::string& word : Words(ReplaceAll(name, "-", " "))) {
    std::string plain;
    for (const char32_t c : ToCodePoints(word)) {
      const char32_t upper = UpperCase(c);
      if (!IsDropped(upper)) plain += PlainLetter(upper);
    }
    // Longer than MAC and one letter: "Mac" and "Mace" are names of their own.
    folded += plain.starts_with("MAC") && plain.size() > 4 ? "MC" + plain.substr(3) : plain;
  }
  return folded;
}

std::string CleanWrittenName(const std::string& name) {
  // From a bracket on it is a remark, such as "(sub)".
  std::string text = name.substr(0, name.find_first_of("(["));
  for (const char* apostrophe : {"’", "‘", "´", "`"}) text = ReplaceAll(text, apostrophe, "'");
  // "Smith, John".
  if (const std::size_t comma = text.find(','); comma != std::string::npos) {
    text = text.substr(comma + 1) + " " + text.substr(0, comma);
  }
  std::vector<std::string> words = Words(ReplaceAll(text, ".", " "));
  // Two words always stay: with fewer, a title may be all of a name that there is ("Dr Lee").
  while (words.size() > 2 && IsTitle(words.front())) words.erase(words.begin());
  while (words.size() > 2 && IsFigures(words.back())) words.pop_back();
  std::string clean;
  for (const std::string& word : words) clean += (clean.empty() ? "" : " ") + word;
  return clean;
}

bool FoldedEqual(const std::string& left, const std::string& right) {
  return left.size() == right.size() && std::equal(left.begin(), left.end(), right.begin(),
                                                   [](char a, char b) { return a == b || a == '?' || b == '?'; });
}

bool WithinOneSlip(const std::string& left, const std::string& right) {
  // Only here does a question mark fit any letter; what a slip is, is the names' rule.
  return FoldedEqual(left, right) || IsOneSlipAway(left, right);
}

}  // namespace tavi::host
