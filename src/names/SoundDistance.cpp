// How unlike two names sound: the cheapest way to make one row of sounds of the other by putting a sound for another,
// leaving one out or putting one in. What these cost stands in tables: 110 for two consonants that have nothing to do
// with each other, less for those that are often taken for each other (K and G 60, the vowels of "see" and "sky" 30),
// 140 for a vowel against a consonant. Sounds that are swallowed in speech cost little where they come or go: an
// unclear vowel 30, an H 40, a D behind N 55.
//
// One row of the table of distances is kept, the usual way of computing this; both names are cut at 40 sounds, so that
// a comparison takes at most 1,600 steps.
#include "names/NameSounds.h"

#include <algorithm>
#include <array>

namespace tavi {
namespace {

constexpr std::size_t kLongest = 40;

/// Sounds that are often taken for each other, and how far apart they are.
struct Likeness {
  std::string_view sounds;
  int distance;
};

constexpr std::array kLikenesses{
    Likeness{"0aeiou12345678", 45},
    Likeness{"ae", 30},
    Likeness{"ei2", 25},
    Likeness{"a1", 25},
    Likeness{"o46", 25},
    Likeness{"ou", 30},
    Likeness{"12", 30},
    Likeness{"u5", 25},
    Likeness{"e82", 25},
    Likeness{"23i", 30},
    Likeness{"56", 25},
    Likeness{"45", 30},
    Likeness{"ao", 35},
    Likeness{"u8i", 35},
    Likeness{"02", 40},
    Likeness{"04", 30},
    Likeness{"KG", 60},
    Likeness{"TD", 60},
    Likeness{"PB", 70},
    Likeness{"FV", 35},
    Likeness{"SXC", 45},
    Likeness{"JCX", 55},
    Likeness{"GJ", 50},
    Likeness{"KC", 45},
    Likeness{"MN", 75},
    Likeness{"SK", 70},
    Likeness{"VW", 70},
    Likeness{"JY", 60},
    Likeness{"KX", 60},
    Likeness{"TC", 70},
    Likeness{"Y2i", 50},
};

/// Sounds are written in ASCII, so a table of all pairs is small and needs no search.
constexpr std::size_t kSounds = 128;
using Matrix = std::array<std::array<unsigned char, kSounds>, kSounds>;

/// Where two likenesses name the same pair of sounds the smaller distance counts.
constexpr Matrix MakeSubstitutions() {
  Matrix matrix{};
  for (std::size_t left = 0; left < kSounds; ++left) {
    for (std::size_t right = 0; right < kSounds; ++right) {
      const bool isVowelLeft = IsVowelSound(static_cast<char>(left));
      const bool isVowelRight = IsVowelSound(static_cast<char>(right));
      matrix[left][right] = left == right ? 0 : isVowelLeft != isVowelRight ? 140 : 110;
    }
  }
  for (const Likeness& likeness : kLikenesses) {
    for (const char left : likeness.sounds) {
      for (const char right : likeness.sounds) {
        if (left == right) continue;
        unsigned char& distance = matrix[static_cast<std::size_t>(left)][static_cast<std::size_t>(right)];
        distance = static_cast<unsigned char>(std::min<int>(distance, likeness.distance));
      }
    }
  }
  return matrix;
}

constexpr Matrix kSubstitutions = MakeSubstitutions();

/// What a sound that one name has and the other lacks counts.
int Missing(std::string_view sounds, std::size_t position) {
  const char sound = sounds[position];
  const char before = position > 0 ? sounds[position - 1] : '\0';
  const bool isLast = position + 1 == sounds.size();
  switch (sound) {
    case '0':
      return 30;
    case 'H':
      return 40;
    case 'W':
      return position == 0 ? 90 : 50;
    case 'Y':
      return 50;
    // Behind a vowel it is often not heard.
    case 'R':
      return before != '\0' && IsVowelSound(before) ? 55 : 85;
    // A plural or a genitive that came to a name: Williams and William.
    case 'S':
      return isLast ? 60 : 90;
    // Behind N, L, S or R they are often not heard: Sandford, Holdsworth.
    case 'T':
    case 'D':
      return before == 'N' || before == 'L' || before == 'S' || before == 'R' ? 55 : 90;
    case 'G':
      return before == 'N' ? 55 : 90;
    // Thompson and Thomson.
    case 'P':
    case 'B':
      return before == 'M' ? 40 : 95;
    default:
      return IsVowelSound(sound) ? 55 : 95;
  }
}

}  // namespace

int SoundDistance(std::string_view left, std::string_view right, int limit) {
  if (left == right) return 0;
  left = left.substr(0, kLongest);
  right = right.substr(0, kLongest);
  std::array<int, kLongest + 1> row{};
  for (std::size_t column = 0; column < right.size(); ++column) row[column + 1] = row[column] + Missing(right, column);
  for (std::size_t line = 0; line < left.size(); ++line) {
    int diagonal = row[0];
    const int missing = Missing(left, line);
    row[0] += missing;
    int smallest = row[0];
    for (std::size_t column = 0; column < right.size(); ++column) {
      const int substituted =
          diagonal + kSubstitutions[static_cast<std::size_t>(left[line])][static_cast<std::size_t>(right[column])];
      diagonal = row[column + 1];
      row[column + 1] = std::min({substituted, row[column + 1] + missing, row[column] + Missing(right, column)});
      smallest = std::min(smallest, row[column + 1]);
    }
    // Distances only grow from row to row.
    if (smallest >= limit) return limit;
  }
  return std::min(row[right.size()], limit);
}

// Behind the first place where the two differ everything must be the same again, with one letter skipped in the longer
// one, one in both, or two exchanged.
bool IsOneSlipAway(std::string_view left, std::string_view right) {
  if (left.size() > right.size()) std::swap(left, right);
  if (right.size() - left.size() > 1) return false;
  const auto [first, second] = std::mismatch(left.begin(), left.end(), right.begin());
  const std::string_view leftRest = left.substr(static_cast<std::size_t>(first - left.begin()));
  const std::string_view rightRest = right.substr(static_cast<std::size_t>(second - right.begin()));
  // Nothing differs at all.
  if (rightRest.empty()) return true;
  if (left.size() < right.size()) return rightRest.substr(1) == leftRest;
  if (leftRest.substr(1) == rightRest.substr(1)) return true;
  return leftRest.size() >= 2 && leftRest[0] == rightRest[1] && leftRest[1] == rightRest[0] &&
         leftRest.substr(2) == rightRest.substr(2);
}

}  // namespace tavi
