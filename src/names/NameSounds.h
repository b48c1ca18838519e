#pragma once

#include <string>
#include <string_view>

namespace tavi {

/// How a name is likely to be said, one character a sound, for comparing names by ear.
///
/// Consonants are capital letters: B D F G J K L M N P R S T V W Y and C (as in "church"), X (as in "shop"), H.
/// Vowels of the first syllable are a e i o u (short) and 1 (day) 2 (see) 3 (sky) 4 (go) 5 (too) 6 (now) 7 (boy)
/// 8 (her); vowels of later syllables are 0, which stands for any, but for 2 at the end (Mary, Charlie, Stanley) and
/// 4 at the end (Marlow, Munro).
/// `letters` are capital letters A to Z (PlainLetters). The result is no longer than twice the letters.
std::string SoundsOf(std::string_view letters);

/// The consonants of SoundsOf, those that are easily confused written as one, after an "A" when the name begins with a
/// vowel.
std::string SkeletonOf(std::string_view sounds);

/// True for the characters that SoundsOf writes for vowels.
constexpr bool IsVowelSound(char sound) {
  return sound > 'Z' || sound < 'A';
}

/// How unlike two names sound (SoundsOf): 0 the same, 100 about one clearly different sound. Stops counting at `limit`:
/// whatever is as unlike as that, or more, has the distance `limit`.
int SoundDistance(std::string_view left, std::string_view right, int limit);

/// True when one wrong key makes one text of the other: a letter left out, put in, or put for another, or two
/// neighbours in the wrong order.
bool IsOneSlipAway(std::string_view left, std::string_view right);

}  // namespace tavi
