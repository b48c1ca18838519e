#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Text as Unicode code points. All texts are UTF-8; bytes that are no UTF-8 count as U+FFFD each, except that a lone
/// surrogate in its three-byte form is kept (see Value.h). Case mappings are the simple ones of the Unicode standard,
/// independent of the locale.
namespace tavi {

/// The code points of a text.
std::u32string ToCodePoints(std::string_view text);
/// The UTF-8 text of code points.
std::string FromCodePoints(std::u32string_view codePoints);
/// UTF-16 of a text; a lone surrogate stays one.
std::u16string ToUtf16(std::string_view text);
/// UTF-8 of UTF-16.
std::string FromUtf16(std::u16string_view text);

/// The number of code points.
std::size_t TextLength(std::string_view text);
/// The first `count` code points.
std::string FirstCharacters(std::string_view text, std::size_t count);

/// Upper case of one code point, of a text; lower case likewise.
char32_t UpperCase(char32_t codePoint);
std::string UpperCase(std::string_view text);
char32_t LowerCase(char32_t codePoint);
std::string LowerCase(std::string_view text);

/// Compares ignoring case, code point by code point: negative, 0 or positive.
int CompareIgnoringCase(std::string_view left, std::string_view right);
/// True when the texts are equal ignoring case.
bool EqualIgnoringCase(std::string_view left, std::string_view right);

/// Without leading and trailing blanks (U+0020 only).
std::string Trim(std::string_view text);
/// Every `from` replaced by `to`, from left to right, not looking again at what was put in. `from` is not empty.
std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);
/// The pieces of a text between separators; one empty piece for the empty text.
std::vector<std::string> Split(std::string_view text, char separator);

/// True for 0 to 9.
constexpr bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

}  // namespace tavi
