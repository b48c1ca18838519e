// Patterns of Like as a row of pieces, of which each takes one character, or any number (AnyRun). Matching is that of
// Wildcards.h, which goes back to the last run only, so that it takes time by the text's length times the pattern's at
// worst. "[A-C]*_#" is a set, a run, any one character and a digit: it takes "Bx1" and "c1234".
//
// Case is taken out of single characters as they are read, and tried both ways in sets, where a range may hold
// either.
#include <algorithm>

#include "access/file/EngineError.h"
#include "access/sql/expression/Operators.h"
#include "platform/values/Text.h"
#include "platform/values/Wildcards.h"

namespace tavi::access::sql {

LikePattern::LikePattern(std::string_view pattern) {
  const std::u32string characters = ToCodePoints(pattern);
  for (std::size_t place = 0; place < characters.size();) {
    const char32_t character = characters[place];
    if (character == U'[') {
      place = ReadSet(characters, place + 1);
      continue;
    }
    Piece piece;
    piece.character = UpperCase(character);
    if (character == U'*' || character == U'%') piece.kind = Piece::Kind::AnyRun;
    if (character == U'?' || character == U'_') piece.kind = Piece::Kind::Any;
    if (character == U'#') piece.kind = Piece::Kind::Digit;
    pieces_.push_back(std::move(piece));
    ++place;
  }
}

/// Reads a set from behind its opening bracket on; returns the place behind its closing one.
std::size_t LikePattern::ReadSet(std::u32string_view pattern, std::size_t place) {
  const std::size_t end = pattern.find(U']', place);
  if (end == std::u32string_view::npos) RaiseFailure("Invalid pattern string: a '[' lacks its ']'.");
  Piece piece;
  piece.kind = Piece::Kind::Set;
  // [!] is the set of one exclamation mark.
  piece.excluded = pattern[place] == U'!' && end > place + 1;
  for (std::size_t i = piece.excluded ? place + 1 : place; i < end; ++i) {
    char32_t last = pattern[i];
    const char32_t first = pattern[i];
    // A hyphen at either end of a set is a character like others.
    if (i + 2 < end && pattern[i + 1] == U'-') {
      last = pattern[i + 2];
      i += 2;
    }
    if (last < first) RaiseFailure("Invalid pattern string: the range in '[...]' ends before it starts.");
    piece.ranges.emplace_back(first, last);
  }
  // [] matches the empty text: it leaves no piece.
  if (!piece.ranges.empty()) pieces_.push_back(std::move(piece));
  return end + 1;
}

// Runs are never asked: they take what is left over by the pieces behind them.
bool LikePattern::Accepts(const Piece& piece, char32_t character) {
  switch (piece.kind) {
    case Piece::Kind::Character:
      return piece.character == UpperCase(character);
    case Piece::Kind::Digit:
      return character >= U'0' && character <= U'9';
    case Piece::Kind::Set: {
      // A set is tried with the character in both cases; [!...] holds what neither is in.
      const auto holds = [&](char32_t one) {
        return std::any_of(piece.ranges.begin(), piece.ranges.end(),
                           [one](const auto& range) { return range.first <= one && one <= range.second; });
      };
      const bool isAmong = holds(character) || holds(UpperCase(character)) || holds(LowerCase(character));
      return isAmong != piece.excluded;
    }
    default:
      return true;
  }
}

bool LikePattern::Matches(std::string_view text) const {
  const auto isRun = [](const Piece& piece) { return piece.kind == Piece::Kind::AnyRun; };
  // Plain letters are characters as they stand; most texts have no others.
  if (std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; })) {
    return FitsPattern(text, pieces_, isRun, [](const Piece& piece, char character) {
      return Accepts(piece, static_cast<char32_t>(character));
    });
  }
  return FitsPattern(ToCodePoints(text), pieces_, isRun, Accepts);
}

}  // namespace tavi::access::sql
