// A key is the head of the family that lists a name, or of the form most like it; for a name that is like none it is
// made of the consonants. docs/name-keys.md tells the steps with examples. Keys of the three kinds cannot meet: heads
// are letters alone, those of consonants begin with 1, those of other alphabets' characters with 2.
#include "names/NameKeys.h"

#include <algorithm>

#include "names/NameDictionary.h"
#include "names/NameLetters.h"
#include "names/NameSounds.h"
#include "names/NameTables.h"
#include "platform/values/Text.h"

namespace tavi {
namespace {

constexpr std::size_t kLongestKey = 50;
/// Longer names are in no dictionary, nor like a name in one.
constexpr std::size_t kLongestListed = 30;

/// The beginnings of keys that are no name of a dictionary, so that keys of one kind never equal those of another.
constexpr char kSkeletonKey = '1';
constexpr char kCharacterKey = '2';

/// A vowel that stands for those that are seldom told apart in a rare name.
char VowelClass(char vowel) {
  if (std::string_view("a1e8").find(vowel) != std::string_view::npos) return 'A';
  return std::string_view("i23").find(vowel) != std::string_view::npos ? 'E' : 'O';
}

/// The key of a name that no dictionary knows: its consonants, and of its vowels the first one when there are few
/// consonants, because there it is most of the name.
std::string SkeletonKey(std::string_view letters, std::size_t fewConsonants) {
  // Initials are told apart by eye.
  if (letters.size() == 1) return kSkeletonKey + std::string(letters);
  const std::string sounds = SoundsOf(letters);
  std::string skeleton = SkeletonOf(sounds);
  if (skeleton.size() <= fewConsonants) {
    for (const char sound : sounds) {
      if (!IsVowelSound(sound)) continue;
      skeleton.push_back(VowelClass(sound));
      break;
    }
  }
  return kSkeletonKey + skeleton;
}

/// The key of a name without Latin letters: the numbers of its characters.
std::string CharacterKey(std::u32string_view characters) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  constexpr int kBitsOfDigit = 4;
  std::string key(1, kCharacterKey);
  for (const char32_t character : characters) {
    if (key.size() >= kLongestKey) break;
    std::string number;
    for (std::uint32_t rest = character; rest != 0; rest >>= kBitsOfDigit) {
      number.insert(number.begin(), kDigits[rest & (kDigits.size() - 1)]);
    }
    key += number;
  }
  // The number on the limit is cut, as a long name's consonants are.
  key.resize(std::min(key.size(), kLongestKey));
  return key;
}

/// The key of a text without letters or digits, such as an apostrophe.
std::string KeyOfRemains(std::string_view name) {
  std::u32string characters = ToCodePoints(name);
  std::erase(characters, U' ');
  return characters.empty() ? std::string() : CharacterKey(characters);
}

/// By majority: a Latin initial does not make a Greek name a Latin one.
bool IsOfOtherAlphabet(const NameLetters& letters) {
  return letters.latin.empty() || letters.otherLetters > letters.latin.size();
}

std::string KeyOfOthers(std::string_view name, const NameLetters& letters) {
  return letters.others.empty() ? KeyOfRemains(name) : CharacterKey(letters.others);
}

// Made at the first use: not every program asks for keys.
const NameDictionary& FirstNameDictionary() {
  static const NameDictionary dictionary(FirstNameTable());
  return dictionary;
}

const NameDictionary& SurnameDictionary() {
  static const NameDictionary dictionary(SurnameTable());
  return dictionary;
}

std::string KeyOf(std::string_view letters, const NameDictionary& dictionary, std::size_t fewConsonants) {
  std::string key;
  if (letters.size() <= kLongestListed) key = dictionary.HeadOf(letters);
  if (key.empty()) key = SkeletonKey(letters, fewConsonants);
  // The column's width.
  if (key.size() > kLongestKey) key.resize(kLongestKey);
  return key;
}

/// An Irish surname without its O', when only the rest is listed; else the letters as they are.
std::string_view WithoutIrishO(std::string_view letters, const NameDictionary& dictionary) {
  constexpr std::size_t kShortest = 4;
  const bool mayHaveO = letters.size() >= kShortest && letters.size() <= kLongestListed && letters.front() == 'O';
  if (!mayHaveO || !dictionary.ListedHeadOf(letters).empty()) return letters;
  const std::string_view rest = letters.substr(1);
  return dictionary.ListedHeadOf(rest).empty() ? letters : rest;
}

}  // namespace

std::string SurnameKey(std::string_view name) {
  constexpr std::size_t kFewConsonants = 2;
  NameLetters letters = LettersOf(name);
  if (IsOfOtherAlphabet(letters)) return KeyOfOthers(name, letters);
  const NameDictionary& dictionary = SurnameDictionary();
  // The dictionary's own surnames are written in the same way.
  const std::string plain = WithPlainPrefix(std::move(letters.latin));
  return KeyOf(WithoutIrishO(plain, dictionary), dictionary, kFewConsonants);
}

std::string FirstNameKey(std::string_view name) {
  constexpr std::size_t kFewConsonants = 3;
  const NameLetters letters = LettersOf(name);
  if (IsOfOtherAlphabet(letters)) return KeyOfOthers(name, letters);
  return KeyOf(letters.latin, FirstNameDictionary(), kFewConsonants);
}

bool IsShortFormOf(std::string_view shortName, std::string_view fullName) {
  // What has the same key and sounds like the full name is a spelling of it, and no short form.
  constexpr int kSoundsAlike = 60;
  const std::string shortLetters = PlainLetters(shortName);
  const std::string fullLetters = PlainLetters(fullName);
  if (shortLetters.empty() || shortLetters.size() >= fullLetters.size()) return false;
  if (FirstNameDictionary().ListedHeadOf(shortLetters).empty()) return false;
  if (FirstNameKey(shortName) != FirstNameKey(fullName)) return false;
  return SoundDistance(SoundsOf(shortLetters), SoundsOf(fullLetters), kSoundsAlike) >= kSoundsAlike;
}

}  // namespace tavi
