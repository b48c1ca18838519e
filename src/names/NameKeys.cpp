#include "names/NameKeys.h"

#include <array>

#include "names/NameLetters.h"
#include "names/ShortForms.h"
#include "platform/values/Text.h"

namespace tavi {
namespace {

constexpr std::size_t kLongestKey = 50;

/// What may follow or precede a spelling for a rule to hold.
enum class Place { Anywhere, Start, End, BeforeFrontVowel, BeforeConsonantOrEnd };

/// A spelling and the sound that is written for it. Sounds are capital letters; "" is silence.
struct SoundRule {
  std::string_view spelling;
  Place place;
  std::string_view sound;
};

/// The first rule that fits at a place is taken; letters without a rule sound as themselves. Vowels are no part of it.
constexpr std::array kSoundRules{
    // Openings with a silent letter.
    SoundRule{"KN", Place::Start, "N"},
    SoundRule{"GN", Place::Start, "N"},
    SoundRule{"PN", Place::Start, "N"},
    SoundRule{"WR", Place::Start, "R"},
    SoundRule{"RH", Place::Anywhere, "R"},
    SoundRule{"PS", Place::Start, "S"},
    SoundRule{"X", Place::Start, "S"},
    SoundRule{"WH", Place::Start, "W"},
    // Groups.
    SoundRule{"TCH", Place::Anywhere, "C"},
    SoundRule{"SCH", Place::Anywhere, "S"},
    SoundRule{"CHR", Place::Anywhere, "KR"},
    SoundRule{"CHL", Place::Anywhere, "KL"},
    SoundRule{"CH", Place::Anywhere, "C"},
    SoundRule{"SH", Place::Anywhere, "S"},
    SoundRule{"TH", Place::Anywhere, "T"},
    SoundRule{"PH", Place::Anywhere, "F"},
    SoundRule{"GHT", Place::Anywhere, "T"},
    SoundRule{"GH", Place::Start, "G"},
    SoundRule{"GH", Place::Anywhere, ""},
    SoundRule{"DGE", Place::Anywhere, "J"},
    SoundRule{"DG", Place::BeforeFrontVowel, "J"},
    SoundRule{"CKS", Place::Anywhere, "KS"},
    SoundRule{"CK", Place::Anywhere, "K"},
    SoundRule{"SC", Place::BeforeFrontVowel, "S"},
    SoundRule{"C", Place::BeforeFrontVowel, "S"},
    SoundRule{"C", Place::Anywhere, "K"},
    SoundRule{"G", Place::BeforeFrontVowel, "J"},
    SoundRule{"QU", Place::Anywhere, "K"},
    SoundRule{"Q", Place::Anywhere, "K"},
    SoundRule{"X", Place::Anywhere, "KS"},
    SoundRule{"Z", Place::Anywhere, "S"},
    SoundRule{"V", Place::Anywhere, "F"},
    SoundRule{"MB", Place::End, "M"},
    SoundRule{"W", Place::BeforeConsonantOrEnd, ""},
    SoundRule{"H", Place::BeforeConsonantOrEnd, ""},
};

bool IsVowel(char letter) {
  return std::string_view("AEIOUY").find(letter) != std::string_view::npos;
}

/// The three vowels that hearing and typing seldom confuse, in small letters.
char VowelSound(char vowel) {
  if (vowel == 'A') return 'a';
  return vowel == 'O' || vowel == 'U' ? 'o' : 'e';
}

bool Holds(Place place, std::string_view letters, std::size_t position, std::size_t length) {
  const char next = position + length < letters.size() ? letters[position + length] : '\0';
  switch (place) {
    case Place::Start:
      return position == 0;
    case Place::End:
      return next == '\0';
    case Place::BeforeFrontVowel:
      return next == 'E' || next == 'I' || next == 'Y';
    case Place::BeforeConsonantOrEnd:
      return !IsVowel(next);
    case Place::Anywhere:
      break;
  }
  return true;
}

const SoundRule* RuleAt(std::string_view letters, std::size_t position) {
  for (const SoundRule& rule : kSoundRules) {
    if (letters.substr(position).starts_with(rule.spelling) &&
        Holds(rule.place, letters, position, rule.spelling.size())) {
      return &rule;
    }
  }
  return nullptr;
}

/// The sounds of a name: consonants in capital, vowels in small letters, none of them twice in a row.
std::string SoundsOf(std::string_view letters) {
  std::string sounds;
  const auto append = [&sounds](char sound) {
    const bool isSecondVowel = sound >= 'a' && !sounds.empty() && sounds.back() >= 'a';
    if (!isSecondVowel && !(sounds.ends_with(sound))) sounds.push_back(sound);
  };
  for (std::size_t position = 0; position < letters.size();) {
    if (const SoundRule* rule = RuleAt(letters, position)) {
      for (const char sound : rule->sound) append(sound);
      position += rule->spelling.size();
    } else {
      append(IsVowel(letters[position]) ? VowelSound(letters[position]) : letters[position]);
      ++position;
    }
  }
  return sounds;
}

/// The consonants of a name, and of its vowels the first one: at the start only that there is one, and in a name of few
/// consonants also which one, because there it is most of the name.
std::string Skeleton(const std::string& sounds, std::size_t fewConsonants) {
  std::string consonants;
  char firstVowel = '\0';
  for (const char sound : sounds) {
    if (sound < 'a') consonants.push_back(sound);
    if (sound >= 'a' && firstVowel == '\0') firstVowel = sound;
  }
  std::string key = consonants;
  if (!sounds.empty() && sounds.front() >= 'a') key.insert(0, "A");
  if (firstVowel != '\0' && consonants.size() <= fewConsonants) key.push_back(firstVowel);
  return key;
}

/// A key for names without a plain letter: the numbers of their characters.
std::string NumberKey(std::string_view name) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string key;
  for (const char32_t character : ToCodePoints(Trim(name))) {
    if (character == U' ') continue;
    for (std::size_t rest = UpperCase(character); rest != 0; rest /= kDigits.size()) {
      key.push_back(kDigits[rest % kDigits.size()]);
    }
  }
  return key;
}

std::string Key(std::string_view name, const std::string& letters, std::size_t fewConsonants) {
  std::string key = letters.empty() ? NumberKey(name) : Skeleton(SoundsOf(letters), fewConsonants);
  if (key.empty()) key = letters;
  if (key.size() > kLongestKey) key.resize(kLongestKey);
  return key;
}

/// Writes the beginning of a surname in one way: "Mac" as "Mc", "Saint" as "St".
std::string WithPlainPrefix(std::string letters) {
  constexpr std::size_t kShortestStem = 3;
  constexpr std::string_view kMac = "MAC";
  constexpr std::string_view kSaint = "SAINT";
  if (letters.starts_with(kMac) && letters.size() >= kMac.size() + kShortestStem) letters.erase(1, 1);
  if (letters.starts_with(kSaint)) letters.replace(0, kSaint.size(), "ST");
  return letters;
}

}  // namespace

std::string SurnameKey(std::string_view name) {
  constexpr std::size_t kFewConsonants = 2;
  return Key(name, WithPlainPrefix(PlainLetters(name)), kFewConsonants);
}

std::string FirstNameKey(std::string_view name) {
  constexpr std::size_t kFewConsonants = 3;
  const std::string letters = PlainLetters(name);
  const std::string_view fullName = FullFormOf(letters);
  return Key(name, std::string(fullName.empty() ? letters : fullName), kFewConsonants);
}

}  // namespace tavi
