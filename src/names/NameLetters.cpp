// The letters of a name, whatever they are dressed in. A character is taken apart into its canonical parts (é into e
// and an accent), combining marks are dropped, letters become capitals, and what then is A to Z, or stands for such
// letters (Ø, ß), is a Latin letter. Everything else that can be seen is kept beside them, for names of other
// alphabets. Both ways in which Unicode writes an accent come to the same, since both end in the same parts.
#include "names/NameLetters.h"

#include <algorithm>
#include <array>

#include "platform/values/Text.h"

namespace tavi {
namespace {

/// Latin letters that are written like plain ones with something that is no accent. In upper case.
struct LetterForm {
  std::u32string_view letters;
  std::string_view plain;
};

constexpr std::array kLetterForms{
    LetterForm{U"ÆǼǢ", "AE"}, LetterForm{U"ĐÐƉƊ", "D"}, LetterForm{U"ØǾƆƟ", "O"},  LetterForm{U"Œ", "OE"},
    LetterForm{U"Ł", "L"},    LetterForm{U"Þ", "TH"},   LetterForm{U"ßẞ", "SS"},   LetterForm{U"Ħ", "H"},
    LetterForm{U"ı", "I"},    LetterForm{U"Ŋ", "N"},    LetterForm{U"Ŧ", "T"},     LetterForm{U"Ə", "A"},
    LetterForm{U"Ĳ", "IJ"},   LetterForm{U"Ŀ", "L"},    LetterForm{U"ĸ", "K"},     LetterForm{U"ſ", "S"},
    LetterForm{U"ŉ", "N"},    LetterForm{U"Ɓ", "B"},    LetterForm{U"Ƈ", "C"},     LetterForm{U"ƐƎ", "E"},
    LetterForm{U"Ɠ", "G"},    LetterForm{U"ƗƖ", "I"},   LetterForm{U"Ƙ", "K"},     LetterForm{U"Ɲ", "N"},
    LetterForm{U"Ƴ", "Y"},    LetterForm{U"Ʉ", "U"},    LetterForm{U"ǄǅǱǲ", "DZ"}, LetterForm{U"Ǉǈ", "LJ"},
    LetterForm{U"Ǌǋ", "NJ"},  LetterForm{U"ﬀ", "FF"},   LetterForm{U"ﬁ", "FI"},    LetterForm{U"ﬂ", "FL"},
    LetterForm{U"ﬃ", "FFI"},  LetterForm{U"ﬄ", "FFL"},  LetterForm{U"ﬅﬆ", "ST"},
};

/// Where the letters of other alphabets are, punctuation and symbols left out as far as names need it.
constexpr std::array<MarkRange, 9> kAlphabets{{{0x0370, 0x1DFF},
                                               {0x1F00, 0x1FFF},
                                               {0x2C00, 0x2DFF},
                                               {0x3041, 0xD7FF},
                                               {0xF900, 0xFAFF},
                                               {0xFB07, 0xFDFF},
                                               {0xFE70, 0xFEFE},
                                               {0x10000, 0x1CFFF},
                                               {0x20000, 0x3FFFF}}};

/// Blanks, punctuation and what cannot be seen.
constexpr std::array<MarkRange, 9> kIgnored{{{0x0000, 0x002F},
                                             {0x003A, 0x0040},
                                             {0x005B, 0x0060},
                                             {0x007B, 0x00BF},
                                             {0x02B0, 0x036F},
                                             {0x2000, 0x206F},
                                             {0x3000, 0x3000},
                                             {0xFE00, 0xFE0F},
                                             {0xFEFF, 0xFEFF}}};

/// What the reading of UTF-8 puts for bytes that are none.
constexpr char32_t kInvalid = 0xFFFD;

/// The ranges ascend and do not overlap.
bool IsIn(std::span<const MarkRange> ranges, char32_t character) {
  const auto after = std::upper_bound(ranges.begin(), ranges.end(), character,
                                      [](char32_t value, const MarkRange& range) { return value < range.first; });
  return after != ranges.begin() && character <= std::prev(after)->last;
}

/// Calls `visit` for each character of the canonical decomposition of one.
/// Syllables of Hangul are taken apart by their numbers: each is a lead, a vowel and perhaps a tail, in the order of
/// all their combinations. Parts of other characters may have parts of their own.
template <typename Visitor>
void Decompose(char32_t character, const Visitor& visit) {
  constexpr char32_t kFirstSyllable = 0xAC00;
  constexpr char32_t kLastSyllable = 0xD7A3;
  constexpr char32_t kVowels = 21;
  constexpr char32_t kTails = 28;
  if (character >= kFirstSyllable && character <= kLastSyllable) {
    const char32_t syllable = character - kFirstSyllable;
    visit(0x1100 + syllable / (kVowels * kTails));
    visit(0x1161 + syllable / kTails % kVowels);
    if (syllable % kTails != 0) visit(0x11A7 + syllable % kTails);
    return;
  }
  const auto all = Decompositions();
  const auto found =
      std::lower_bound(all.begin(), all.end(), character,
                       [](const Decomposition& entry, char32_t value) { return entry.composed < value; });
  if (found == all.end() || found->composed != character) return visit(character);
  Decompose(found->first, visit);
  if (found->second != 0) Decompose(found->second, visit);
}

/// A search from letter to letter will do: few names have one of these.
std::string_view PlainForm(char32_t letter) {
  for (const LetterForm& form : kLetterForms) {
    if (form.letters.find(letter) != std::u32string_view::npos) return form.plain;
  }
  return {};
}

/// Full-width Latin letters stand in one row like the plain ones.
constexpr char32_t kFullWidthA = 0xFF21;

/// Adds one character that has no decomposition.
void Add(char32_t character, NameLetters& letters) {
  if (IsIn(CombiningMarks(), character)) return;
  char32_t upper = UpperCase(character);
  if (upper >= kFullWidthA && upper < kFullWidthA + 26) upper = upper - kFullWidthA + U'A';
  if (upper >= U'A' && upper <= U'Z') {
    letters.latin.push_back(static_cast<char>(upper));
  } else if (const std::string_view plain = PlainForm(upper); !plain.empty()) {
    letters.latin += plain;
  } else if (upper != kInvalid && !IsIn(kIgnored, upper)) {
    letters.others.push_back(upper);
    if (IsIn(kAlphabets, upper)) ++letters.otherLetters;
  }
}

constexpr std::string_view kMac = "MAC";
constexpr std::string_view kMc = "MC";
constexpr std::string_view kSaint = "SAINT";
constexpr std::string_view kSt = "ST";
/// A rest as short as this belongs to the word: Mack, Macey, Saints.
constexpr std::size_t kShortestStem = 3;

/// True for letters that begin with "M'": no other surname begins with M and one of these.
bool BeginsWithBareM(std::string_view letters) {
  constexpr std::size_t kShortest = 5;
  return letters.size() >= kShortest && letters.front() == 'M' &&
         std::string_view("AEIOUYBCHMW").find(letters[1]) == std::string_view::npos;
}

}  // namespace

NameLetters LettersOf(std::string_view name) {
  NameLetters letters;
  letters.latin.reserve(name.size());
  // Nearly all names are plain ASCII, which needs no taking apart.
  const bool isPlain =
      std::all_of(name.begin(), name.end(), [](char byte) { return static_cast<signed char>(byte) >= 0; });
  if (isPlain) {
    for (const char byte : name) Add(static_cast<unsigned char>(byte), letters);
    return letters;
  }
  for (const char32_t character : ToCodePoints(name)) {
    Decompose(character, [&letters](char32_t part) { Add(part, letters); });
  }
  return letters;
}

std::string PlainLetters(std::string_view name) {
  return LettersOf(name).latin;
}

// MACDONALD, MCDONALD and M'DONALD give MCDONALD, MACKAY gives MCAY, SAINTCLAIR gives STCLAIR.
std::string WithPlainPrefix(std::string letters) {
  if (letters.starts_with(kMac) && letters.size() >= kMac.size() + kShortestStem) {
    letters.replace(0, kMac.size(), kMc);
  } else if (BeginsWithBareM(letters)) {
    letters.replace(0, 1, kMc);
  }
  // McCrae is MacRae, McKay is Mackay and McAy.
  if (letters.starts_with("MCC") || letters.starts_with("MCK")) letters.erase(kMc.size(), 1);
  if (letters.starts_with(kSaint) && letters.size() >= kSaint.size() + kShortestStem) {
    letters.replace(0, kSaint.size(), kSt);
  }
  return letters;
}

}  // namespace tavi
