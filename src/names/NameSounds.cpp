// How English readers say a name, by spelling alone. A name is read once from left to right. At each place the first
// rule is taken whose spelling stands there and whose surroundings fit, so longer spellings stand before their
// beginnings ("GHT" before "GH", "SCH" before "SC") and special places before "anywhere". Consonants that no rule
// names sound as themselves. There are three sets of rules:
//
//   consonants           anywhere:  PH -> F, KN -> N at the start, GH -> nothing
//   the first vowel      in full:   EIGH -> 1, OO -> 5, ER before a consonant -> 8R
//   the last vowel       of a name of more than one syllable: Y, IE, EY -> 2, E -> nothing
//
// Vowels between are unclear in speech and written 0. Examples: KNIGHT gives N3T, STEPHEN and STEVEN give STeF0N and
// STeV0N.
#include "names/NameSounds.h"

#include <algorithm>
#include <array>

namespace tavi {
namespace {

/// Where a spelling must stand for a rule to hold. A front vowel is E, I or Y.
enum class Place {
  Anywhere,
  Start,
  End,

  BeforeFrontVowel,
  BeforeVowel,
  BeforeConsonant,
};

/// A spelling and the sounds that it is read as; "" is silence. `place` looks at the letters around the spelling.
struct SoundRule {
  std::string_view spelling;
  Place place = Place::Anywhere;
  std::string_view sounds;
};

/// The first rule that fits is taken. What no rule covers sounds as itself.
constexpr std::array kConsonantRules{
    SoundRule{"BB", Place::Anywhere, "B"},
    SoundRule{"BT", Place::End, "T"},
    SoundRule{"CHR", Place::Anywhere, "KR"},
    SoundRule{"CHL", Place::Anywhere, "KL"},
    SoundRule{"CHT", Place::Anywhere, "T"},
    // After the spellings in which CH is K or silent (CHRISTINE, CHLOE, CHT) it is the sound of "church".
    SoundRule{"CH", Place::Anywhere, "C"},
    SoundRule{"CKS", Place::Anywhere, "KS"},
    SoundRule{"CK", Place::Anywhere, "K"},
    SoundRule{"CQU", Place::Anywhere, "K"},
    SoundRule{"CQ", Place::Anywhere, "K"},
    SoundRule{"CZ", Place::Anywhere, "C"},
    SoundRule{"CC", Place::BeforeFrontVowel, "KS"},
    SoundRule{"CC", Place::Anywhere, "K"},
    SoundRule{"C", Place::BeforeFrontVowel, "S"},
    SoundRule{"C", Place::Anywhere, "K"},
    SoundRule{"DGE", Place::Anywhere, "J"},
    SoundRule{"DG", Place::BeforeFrontVowel, "J"},
    SoundRule{"DT", Place::Anywhere, "T"},
    SoundRule{"GHT", Place::Anywhere, "T"},
    // HUGHES: GH is silent but at the start.
    SoundRule{"GH", Place::Start, "G"},
    SoundRule{"GH", Place::Anywhere, ""},
    SoundRule{"GN", Place::Start, "N"},
    SoundRule{"GN", Place::End, "N"},
    SoundRule{"GG", Place::Anywhere, "G"},
    SoundRule{"G", Place::BeforeFrontVowel, "J"},
    SoundRule{"KN", Place::Start, "N"},
    SoundRule{"KH", Place::Anywhere, "K"},
    SoundRule{"LLM", Place::Anywhere, "LM"},
    SoundRule{"MB", Place::End, "M"},
    // Between two consonants a P or D is swallowed: THOMPSON sounds as THOMSON; EDMONDS, REYNOLDS.
    SoundRule{"MPS", Place::Anywhere, "MS"},
    SoundRule{"MPT", Place::Anywhere, "MT"},
    SoundRule{"MN", Place::End, "M"},
    SoundRule{"NDS", Place::Anywhere, "NS"},
    SoundRule{"LDS", Place::Anywhere, "LS"},
    SoundRule{"PH", Place::Anywhere, "F"},
    SoundRule{"PN", Place::Start, "N"},
    SoundRule{"PS", Place::Start, "S"},
    SoundRule{"QU", Place::BeforeVowel, "KW"},
    SoundRule{"Q", Place::Anywhere, "K"},
    SoundRule{"RRH", Place::Anywhere, "R"},
    SoundRule{"RH", Place::Anywhere, "R"},
    SoundRule{"SCH", Place::Anywhere, "X"},
    SoundRule{"SC", Place::BeforeFrontVowel, "S"},
    SoundRule{"SSI", Place::BeforeVowel, "X"},
    SoundRule{"SH", Place::Anywhere, "X"},
    // As in CASTLE.
    SoundRule{"STL", Place::Anywhere, "SL"},
    SoundRule{"SZ", Place::Anywhere, "S"},
    SoundRule{"TCH", Place::Anywhere, "C"},
    SoundRule{"TH", Place::Anywhere, "T"},
    SoundRule{"TIO", Place::Anywhere, "X0"},
    SoundRule{"TZ", Place::Anywhere, "TS"},
    SoundRule{"WH", Place::Anywhere, "W"},
    SoundRule{"WR", Place::Start, "R"},
    SoundRule{"X", Place::Start, "S"},
    SoundRule{"X", Place::Anywhere, "KS"},
    SoundRule{"Z", Place::Anywhere, "S"},
    // As in JOHNSON.
    SoundRule{"H", Place::BeforeConsonant, ""},
    SoundRule{"H", Place::End, ""},
    SoundRule{"W", Place::BeforeConsonant, ""},
    SoundRule{"W", Place::End, ""},
};

/// Vowels of the first syllable.
constexpr std::array kVowelRules{
    SoundRule{"EIGH", Place::Anywhere, "1"},
    SoundRule{"AIGH", Place::Anywhere, "1"},
    SoundRule{"AUGH", Place::Anywhere, "o"},
    SoundRule{"OUGH", Place::Anywhere, "o"},
    SoundRule{"IGH", Place::Anywhere, "3"},
    SoundRule{"EAU", Place::Anywhere, "4"},
    SoundRule{"IEU", Place::Anywhere, "5"},
    SoundRule{"OUE", Place::Anywhere, "6"},
    // PEARCE, PERCY and BURNS have the same vowel before the R; at the end of a name EAR is that of "dear".
    SoundRule{"EAR", Place::BeforeConsonant, "8R"},
    SoundRule{"ER", Place::BeforeConsonant, "8R"},
    SoundRule{"IR", Place::BeforeConsonant, "8R"},
    SoundRule{"YR", Place::BeforeConsonant, "8R"},
    SoundRule{"UR", Place::BeforeConsonant, "8R"},
    SoundRule{"OUR", Place::BeforeConsonant, "oR"},
    SoundRule{"ER", Place::End, "8R"},
    SoundRule{"IR", Place::End, "8R"},
    SoundRule{"UR", Place::End, "8R"},
    SoundRule{"AI", Place::Anywhere, "1"},
    SoundRule{"AY", Place::Anywhere, "1"},
    SoundRule{"AE", Place::Anywhere, "1"},
    SoundRule{"AU", Place::Anywhere, "o"},
    SoundRule{"AW", Place::Anywhere, "o"},
    SoundRule{"AA", Place::Anywhere, "a"},
    SoundRule{"AH", Place::BeforeConsonant, "a"},
    SoundRule{"EA", Place::Anywhere, "2"},
    SoundRule{"EE", Place::Anywhere, "2"},
    SoundRule{"EI", Place::Anywhere, "2"},
    SoundRule{"EY", Place::Anywhere, "2"},
    SoundRule{"EU", Place::Anywhere, "5"},
    SoundRule{"EW", Place::Anywhere, "5"},
    SoundRule{"IE", Place::Anywhere, "2"},
    SoundRule{"OA", Place::Anywhere, "4"},
    SoundRule{"OE", Place::Anywhere, "4"},
    SoundRule{"OI", Place::Anywhere, "7"},
    SoundRule{"OY", Place::Anywhere, "7"},
    SoundRule{"OO", Place::Anywhere, "5"},
    SoundRule{"OU", Place::Anywhere, "6"},
    SoundRule{"OW", Place::Anywhere, "6"},
    SoundRule{"UE", Place::Anywhere, "5"},
    SoundRule{"UI", Place::Anywhere, "5"},
    SoundRule{"A", Place::Anywhere, "a"},
    SoundRule{"E", Place::Anywhere, "e"},
    SoundRule{"I", Place::Anywhere, "i"},
    SoundRule{"O", Place::Anywhere, "o"},
    SoundRule{"U", Place::Anywhere, "u"},
    SoundRule{"Y", Place::Anywhere, "i"},
};

/// Vowels that end a name of more than one syllable.
constexpr std::array kEndingRules{
    SoundRule{"EIGH", Place::End, "2"}, SoundRule{"OUGH", Place::End, "0"}, SoundRule{"EY", Place::End, "2"},
    SoundRule{"AY", Place::End, "2"},   SoundRule{"IE", Place::End, "2"},   SoundRule{"EE", Place::End, "2"},
    SoundRule{"EA", Place::End, "2"},   SoundRule{"EI", Place::End, "2"},   SoundRule{"Y", Place::End, "2"},
    SoundRule{"I", Place::End, "2"},    SoundRule{"OE", Place::End, "4"},   SoundRule{"OW", Place::End, "4"},
    SoundRule{"OWE", Place::End, "4"},  SoundRule{"O", Place::End, "4"},    SoundRule{"E", Place::End, ""},
    SoundRule{"IA", Place::End, "20"},  SoundRule{"IO", Place::End, "24"},  SoundRule{"AH", Place::End, "0"},
    SoundRule{"UE", Place::End, ""},
};

constexpr std::string_view kVowels = "AEIOUY";
constexpr char kUnclear = '0';
constexpr std::size_t kLetters = 26;

/// Y counts as a vowel; at the start before another vowel the reader takes it as a consonant.
constexpr bool IsVowel(char letter) {
  return kVowels.find(letter) != std::string_view::npos;
}

constexpr bool IsFrontVowel(char letter) {
  return letter == 'E' || letter == 'I' || letter == 'Y';
}

/// `position` and `length` say where the spelling stands in the letters.
bool Holds(Place place, std::string_view letters, std::size_t position, std::size_t length) {
  const char next = position + length < letters.size() ? letters[position + length] : '\0';
  switch (place) {
    case Place::Start:
      return position == 0;
    case Place::End:
      return next == '\0';
    case Place::BeforeFrontVowel:
      return IsFrontVowel(next);
    case Place::BeforeVowel:
      return IsVowel(next);
    case Place::BeforeConsonant:
      return next != '\0' && !IsVowel(next);
    case Place::Anywhere:
      break;
  }
  return true;
}

/// Rules by the first letter of their spelling, in their order.
template <std::size_t Count>
struct RuleBook {
  std::array<SoundRule, Count> rules{};
  std::array<std::size_t, kLetters + 1> starts{};

  constexpr explicit RuleBook(const std::array<SoundRule, Count>& unsorted) {
    std::size_t next = 0;
    for (std::size_t letter = 0; letter < kLetters; ++letter) {
      starts[letter] = next;
      for (const SoundRule& rule : unsorted) {
        if (rule.spelling.front() == static_cast<char>('A' + letter)) rules[next++] = rule;
      }
    }
    starts[kLetters] = next;
  }
};

constexpr RuleBook kConsonants(kConsonantRules);
constexpr RuleBook kFirstVowels(kVowelRules);
constexpr RuleBook kEndings(kEndingRules);

/// The first rule that fits at a place; null when none does.
/// Each vowel letter has a rule of its own for the first syllable that holds anywhere, so that set always has one that
/// fits.
template <std::size_t Count>
const SoundRule* RuleAt(const RuleBook<Count>& book, std::string_view letters, std::size_t position) {
  const auto letter = static_cast<std::size_t>(letters[position] - 'A');
  for (std::size_t number = book.starts[letter]; number < book.starts[letter + 1]; ++number) {
    const SoundRule& rule = book.rules[number];
    if (letters.substr(position).starts_with(rule.spelling) &&
        Holds(rule.place, letters, position, rule.spelling.size())) {
      return &rule;
    }
  }
  return nullptr;
}

/// Reads a name from left to right.
class Reader {
 public:
  explicit Reader(std::string_view letters) : letters_(letters) {}

  std::string Read() {
    while (position_ < letters_.size()) {
      if (BeginsWithConsonantY()) {
        Append('Y');
        ++position_;
      } else if (IsVowel(letters_[position_])) {
        ReadVowel();
      } else {
        ReadConsonant();
      }
    }
    return std::move(sounds_);
  }

 private:
  // YATES and YORK, but not YVONNE.
  [[nodiscard]] bool BeginsWithConsonantY() const {
    return position_ == 0 && letters_.size() > 1 && letters_[0] == 'Y' && IsVowel(letters_[1]);
  }

  void Take(const SoundRule& rule) {
    for (const char sound : rule.sounds) Append(sound);
    position_ += rule.spelling.size();
  }

  /// No sound is heard twice in a row.
  void Append(char sound) {
    if (!sounds_.ends_with(sound)) sounds_.push_back(sound);
  }

  void ReadVowel() {
    if (!sawVowel_) {
      sawVowel_ = true;
      Take(*RuleAt(kFirstVowels, letters_, position_));
    } else if (const SoundRule* ending = RuleAt(kEndings, letters_, position_)) {
      Take(*ending);
    } else {
      ReadUnclearVowel();
    }
  }

  /// In later syllables a run of vowels, with a W or GH that belongs to it, is one unclear vowel.
  void ReadUnclearVowel() {
    // In "Callaghan" the GH belongs to the vowels around it: KaL0N.
    const std::size_t next = std::min(letters_.find_first_not_of(kVowels, position_), letters_.size());
    position_ = next;
    const std::string_view rest = letters_.substr(position_);
    if (rest.starts_with('W') && (rest.size() == 1 || !IsVowel(rest[1]))) ++position_;
    if (letters_.substr(position_).starts_with("GH")) position_ += 2;
    Append(kUnclear);
  }

  /// Takes RE, LE and LES at the end of a name, where the vowel is heard before the consonant.
  bool TakeWeakEnding() {
    const std::string_view rest = letters_.substr(position_);
    if (!sawVowel_ || (rest != "RE" && rest != "LE" && rest != "LES")) return false;
    Append(kUnclear);
    Append(rest.front());
    if (rest.size() > 2) Append(rest.back());
    position_ = letters_.size();
    return true;
  }

  void ReadConsonant() {
    if (TakeWeakEnding()) return;
    if (const SoundRule* rule = RuleAt(kConsonants, letters_, position_)) return Take(*rule);
    Append(letters_[position_]);
    ++position_;
  }

  std::string_view letters_;
  std::size_t position_ = 0;
  bool sawVowel_ = false;
  std::string sounds_;
};

/// The consonant that stands for all that are easily confused with this one.
/// Names whose consonants are put together here are compared with each other; the distance of their sounds still tells
/// them apart.
constexpr char Confused(char consonant) {
  switch (consonant) {
    case 'V':
      return 'F';
    case 'X':
    case 'C':
      return 'S';
    default:
      return consonant;
  }
}

}  // namespace

std::string SoundsOf(std::string_view letters) {
  return Reader(letters).Read();
}

// Consonants that are the same behind each other count once, also across a vowel: LILY gives L.
std::string SkeletonOf(std::string_view sounds) {
  std::string skeleton;
  if (!sounds.empty() && IsVowelSound(sounds.front())) skeleton.push_back('A');
  for (const char sound : sounds) {
    if (IsVowelSound(sound)) continue;
    const char consonant = Confused(sound);
    if (!skeleton.ends_with(consonant)) skeleton.push_back(consonant);
  }
  return skeleton;
}

}  // namespace tavi
