#include "names/NameLetters.h"

#include <array>

#include "platform/values/Text.h"

namespace tavi {
namespace {

/// Letters that are written like a plain one, or two, with something added.
struct Likeness {
  std::u32string_view letters;
  std::string_view plain;
};

constexpr std::array<Likeness, 27> kLikenesses{{{U"ÀÁÂÃÄÅĀĂĄǍ", "A"},  {U"ÆǢǼ", "AE"},  {U"ÇĆĈĊČ", "C"},
                                                {U"ĎĐ", "D"},          {U"Ð", "D"},     {U"ÈÉÊËĒĔĖĘĚẼ", "E"},
                                                {U"ĜĞĠĢǦ", "G"},       {U"ĤĦ", "H"},    {U"ÌÍÎÏĨĪĬĮİǏ", "I"},
                                                {U"Ĳ", "IJ"},          {U"Ĵ", "J"},     {U"ĶǨ", "K"},
                                                {U"ĹĻĽĿŁ", "L"},       {U"ÑŃŅŇŊ", "N"}, {U"ÒÓÔÕÖØŌŎŐǑǪ", "O"},
                                                {U"Œ", "OE"},          {U"ŔŖŘ", "R"},   {U"ŚŜŞŠȘ", "S"},
                                                {U"ßẞ", "SS"},         {U"ŢŤŦȚ", "T"},  {U"Þ", "TH"},
                                                {U"ÙÚÛÜŨŪŬŮŰŲǓ", "U"}, {U"ŴẀẂẄ", "W"},  {U"ÝŶŸỲ", "Y"},
                                                {U"ŹŻŽ", "Z"},         {U"Ə", "A"},     {U"Ơ", "O"}}};

std::string_view PlainLetter(char32_t letter) {
  for (const Likeness& likeness : kLikenesses) {
    if (likeness.letters.find(letter) != std::u32string_view::npos) return likeness.plain;
  }
  return {};
}

}  // namespace

std::string PlainLetters(std::string_view name) {
  std::string plain;
  for (const char32_t written : ToCodePoints(name)) {
    const char32_t letter = UpperCase(written);
    if (letter >= U'A' && letter <= U'Z') {
      plain.push_back(static_cast<char>(letter));
    } else if (letter > 0x7F) {
      plain += PlainLetter(letter);
    }
  }
  return plain;
}

}  // namespace tavi
