#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tavi {

/// A name without its dress: composed and decomposed writings, upper and lower case give the same.
struct NameLetters {
  /// The Latin letters, A to Z in upper case: accents are dropped, letters such as "Æ" and "ß" written as two.
  std::string latin;
  /// All that is neither a Latin letter nor a combining mark, blank or punctuation, in upper case: letters of other
  /// alphabets, digits, emoji.
  std::u32string others;
  /// How many of the others are letters of an alphabet.
  std::size_t otherLetters = 0;
};

/// Any text will do; bytes that are no UTF-8 are left out.
NameLetters LettersOf(std::string_view name);

/// The Latin letters of LettersOf.
std::string PlainLetters(std::string_view name);

/// Writes the beginning of a surname in one way: Mac, Mc and M' as Mc, a K sound after them once, Saint as St.
/// Takes and gives plain capital letters.
std::string WithPlainPrefix(std::string letters);

/// A character that is canonically the same as one or two others; `second` is 0 when it is one. `first` may have a
/// decomposition of its own.
struct Decomposition {
  char32_t composed;
  char32_t first;
  char32_t second = 0;
};

/// Combining marks from `first` to `last`: accents and the like that belong to the letter before them.
struct MarkRange {
  char32_t first;
  char32_t last;
};

/// All canonical decompositions but those of Hangul syllables, which are computed, in ascending order.
std::span<const Decomposition> Decompositions();
/// All combining marks, in ascending order.
std::span<const MarkRange> CombiningMarks();

}  // namespace tavi
