#include "platform/values/Text.h"

#include <algorithm>

#include "platform/values/CaseMapping.h"

// The walk over UTF-8 and what is made of it. All that decodes a text goes through NextCodePoint, so that every
// function counts, cuts and compares the same characters, also where the bytes are none. A text from a damaged file may
// hold any bytes; nothing here raises an error for them, since a list with one strange name is worth more than no list.
//
// Example: "Zoë" is 5A 6F C3 AB; the lead byte C3 announces two bytes and gives 3 << 6 | 2B = EB, "ë". A lone C3 is
// U+FFFD, and the byte behind it is read anew, so that one bad byte does not swallow a good letter.
namespace tavi {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kLastCodePoint = 0x10FFFF;
// From here on a character takes four bytes of UTF-8 and two units of UTF-16.
constexpr char32_t kFirstSupplementary = 0x10000;

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

std::uint8_t ByteAt(std::string_view text, std::size_t position) {
  return static_cast<std::uint8_t>(text[position]);
}

/// C0 and C1 would begin two bytes for what fits into one, F5 and above would lead past the last code point: refused by
/// their lead byte already.
/// The length of the sequence that a lead byte announces; 0 for a byte that leads none.
std::size_t SequenceLength(std::uint8_t lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC2) return 0;
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  return lead < 0xF5 ? 4 : 0;
}

/// Reads the code point at `position` and moves behind it. A byte that belongs to no sequence gives U+FFFD.
char32_t NextCodePoint(std::string_view text, std::size_t& position) {
  const std::uint8_t lead = ByteAt(text, position);
  const std::size_t length = SequenceLength(lead);
  if (length == 1) {
    ++position;
    return lead;
  }
  char32_t codePoint = length == 0 ? kReplacement : lead & (0xFFU >> (length + 1));
  bool whole = length != 0 && text.size() - position >= length;
  for (std::size_t index = 1; whole && index < length; ++index) {
    const std::uint8_t next = ByteAt(text, position + index);
    whole = (next & 0xC0U) == 0x80U;
    codePoint = (codePoint << 6U) | (next & 0x3FU);
  }
  // A longer form than needed would be a second writing of the same letter, which comparisons of bytes would miss. What
  // is between D800 and DFFF passes: real files hold surrogates without a partner, and those must come back as they
  // were.
  const bool shortest = (length != 3 || codePoint >= 0x800) && (length != 4 || codePoint >= kFirstSupplementary);
  if (!whole || !shortest || codePoint > kLastCodePoint) {
    ++position;
    return kReplacement;
  }
  position += length;
  return codePoint;
}

/// The inverse of NextCodePoint: a surrogate becomes its three bytes, what is beyond Unicode U+FFFD.
void Append(std::string& text, char32_t codePoint) {
  const auto put = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  const auto putTail = [&put](char32_t bits) { put(0x80U | (bits & 0x3FU)); };
  if (codePoint > kLastCodePoint) codePoint = kReplacement;
  if (codePoint < 0x80) {
    put(codePoint);
  } else if (codePoint < 0x800) {
    put(0xC0U | (codePoint >> 6U));
    putTail(codePoint);
  } else if (codePoint < kFirstSupplementary) {
    put(0xE0U | (codePoint >> 12U));
    putTail(codePoint >> 6U);
    putTail(codePoint);
  } else {
    put(0xF0U | (codePoint >> 18U));
    putTail(codePoint >> 12U);
    putTail(codePoint >> 6U);
    putTail(codePoint);
  }
}

/// The other case of a letter by binary search in the runs; a letter outside of them, or between two steps of one, is
/// its own. Simple mappings only: one letter stays one letter ("ß" has no upper case here), so that lengths do not
/// change and the place of a character is the same in both texts.
char32_t MapCase(char32_t codePoint, std::span<const CaseRun> runs) {
  const auto run = std::lower_bound(runs.begin(), runs.end(), codePoint,
                                    [](const CaseRun& entry, char32_t value) { return entry.last < value; });
  if (run == runs.end() || codePoint < run->first || (codePoint - run->first) % run->step != 0) return codePoint;
  return static_cast<char32_t>(static_cast<std::int32_t>(codePoint) + run->delta);
}

/// Letter by letter. The bytes may become fewer or more ("ı" is two bytes, its upper case one), so nothing is changed
/// in place.
template <typename Mapping>
std::string MapText(std::string_view text, Mapping mapping) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) Append(result, mapping(NextCodePoint(text, position)));
  return result;
}

}  // namespace

std::u32string ToCodePoints(std::string_view text) {
  std::u32string result;
  result.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) result.push_back(NextCodePoint(text, position));
  return result;
}

std::string FromCodePoints(std::u32string_view codePoints) {
  std::string result;
  result.reserve(codePoints.size());
  for (const char32_t codePoint : codePoints) Append(result, codePoint);
  return result;
}

std::u16string ToUtf16(std::string_view text) {
  std::u16string result;
  result.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    const char32_t codePoint = NextCodePoint(text, position);
    if (codePoint < kFirstSupplementary) {
      result.push_back(static_cast<char16_t>(codePoint));
    } else {
      const char32_t bits = codePoint - kFirstSupplementary;
      result.push_back(static_cast<char16_t>(0xD800U + (bits >> 10U)));
      result.push_back(static_cast<char16_t>(0xDC00U + (bits & 0x3FFU)));
    }
  }
  return result;
}

std::string FromUtf16(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t index = 0; index < text.size(); ++index) {
    const char32_t unit = text[index];
    // A high one at the end, or two in a row, have no partner and are kept alone.
    if (IsHighSurrogate(unit) && index + 1 < text.size() && IsLowSurrogate(text[index + 1])) {
      const char32_t low = text[++index];
      Append(result, kFirstSupplementary + ((unit - 0xD800U) << 10U) + (low - 0xDC00U));
    } else {
      Append(result, unit);
    }
  }
  return result;
}

// Characters and not bytes: what fits a limit does not depend on how many accents a name has.
std::size_t TextLength(std::string_view text) {
  std::size_t length = 0;
  for (std::size_t position = 0; position < text.size(); ++length) NextCodePoint(text, position);
  return length;
}

std::string FirstCharacters(std::string_view text, std::size_t count) {
  std::size_t position = 0;
  for (; count > 0 && position < text.size(); --count) NextCodePoint(text, position);
  return std::string(text.substr(0, position));
}

char32_t UpperCase(char32_t codePoint) {
  // Nearly every letter that is asked for is ASCII: no search for those.
  if (codePoint < 0x80) return codePoint >= U'a' && codePoint <= U'z' ? codePoint - 0x20U : codePoint;
  return MapCase(codePoint, UpperCaseRuns());
}

std::string UpperCase(std::string_view text) {
  return MapText(text, [](char32_t codePoint) { return UpperCase(codePoint); });
}

char32_t LowerCase(char32_t codePoint) {
  if (codePoint < 0x80) return codePoint >= U'A' && codePoint <= U'Z' ? codePoint + 0x20U : codePoint;
  return MapCase(codePoint, LowerCaseRuns());
}

std::string LowerCase(std::string_view text) {
  return MapText(text, [](char32_t codePoint) { return LowerCase(codePoint); });
}

int CompareIgnoringCase(std::string_view left, std::string_view right) {
  constexpr unsigned kAscii = 0x80;
  // Nearly all that is compared is ASCII and needs no decoding.
  std::size_t same = 0;
  for (; same < left.size() && same < right.size(); ++same) {
    const auto leftByte = static_cast<unsigned char>(left[same]);
    const auto rightByte = static_cast<unsigned char>(right[same]);
    if (leftByte >= kAscii || rightByte >= kAscii) break;
    const char32_t leftLetter = UpperCase(char32_t{leftByte});
    const char32_t rightLetter = UpperCase(char32_t{rightByte});
    if (leftLetter != rightLetter) return leftLetter < rightLetter ? -1 : 1;
  }
  // What was the same so far was ASCII on both sides, so that both texts stand at the beginning of a character here.
  std::size_t leftPosition = same;
  std::size_t rightPosition = same;
  while (leftPosition < left.size() && rightPosition < right.size()) {
    const char32_t leftLetter = UpperCase(NextCodePoint(left, leftPosition));
    const char32_t rightLetter = UpperCase(NextCodePoint(right, rightPosition));
    if (leftLetter != rightLetter) return leftLetter < rightLetter ? -1 : 1;
  }
  // One is the beginning of the other: the shorter one comes first.
  if (leftPosition < left.size()) return 1;
  return rightPosition < right.size() ? -1 : 0;
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
  return CompareIgnoringCase(left, right) == 0;
}

// Only the blank itself: a no-break space or a tabulator in a stored name is the club's own and stays.
std::string Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
  std::string result;
  std::size_t position = 0;
  for (;;) {
    // An empty `from` would be found for ever at the same place; it replaces nothing.
    const std::size_t found = from.empty() ? std::string_view::npos : text.find(from, position);
    result += text.substr(position, found - position);
    if (found == std::string_view::npos) return result;
    result += to;
    position = found + from.size();
  }
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  std::size_t position = 0;
  for (;;) {
    const std::size_t found = text.find(separator, position);
    pieces.emplace_back(text.substr(position, found - position));
    if (found == std::string_view::npos) return pieces;
    position = found + 1;
  }
}

}  // namespace tavi
