#include <algorithm>
#include <limits>
#include <string>

#include "access/index/Collation.h"
#include "access/sql/expression/Coercion.h"
#include "access/sql/expression/Functions.h"
#include "platform/values/CodePages.h"
#include "platform/values/Text.h"

/// Text functions. Positions and lengths count characters, from 1; texts are searched ignoring case, as everything in
/// the file is compared, unless the comparison argument is 0 (binary).
namespace tavi::access::sql {
namespace {

using Arguments = std::span<const Value>;

/// Code points, so that a place is one of a character whatever its bytes are.
std::u32string Characters(const Value& value) {
  return ToCodePoints(TextOf(value));
}

/// A count of characters. Raises InvalidArgument when it is negative.
std::size_t CountOf(const Value& value) {
  const std::int32_t count = LongOf(value);
  if (count < 0) RaiseInvalidCall("a number of characters is negative");
  return static_cast<std::size_t>(count);
}

/// A place in a text, counted from 1, as one counted from 0.
std::size_t PlaceOf(const Value& value) {
  const std::int32_t place = LongOf(value);
  if (place < 1) RaiseInvalidCall("places in a text are counted from 1");
  return static_cast<std::size_t>(place - 1);
}

std::int32_t AsLong(std::size_t number) {
  return static_cast<std::int32_t>(std::min<std::size_t>(number, std::numeric_limits<std::int32_t>::max()));
}

/// Texts that a statement makes are bounded: a few nested calls could ask for more memory than there is.
void CheckLength(std::size_t length) {
  if (length > kMaximumTextLength) RaiseOverflow("the text is too long");
}

/// Without the argument texts are compared as the database does.
bool IsBinary(Arguments arguments, std::size_t index) {
  if (index >= arguments.size()) return false;
  const std::int32_t comparison = LongOf(arguments[index]);
  if (comparison < 0 || comparison > 2) RaiseInvalidCall("a comparison is 0 (binary), 1 (text) or 2 (database)");
  return comparison == 0;
}

/// Character by character, so that a place in this form is the same place in the text.
std::u32string SearchForm(const std::u32string& text, bool binary) {
  std::u32string form = text;
  if (!binary) std::transform(form.begin(), form.end(), form.begin(), [](char32_t one) { return UpperCase(one); });
  return form;
}

/// Characters, not bytes.
Value Len(Arguments arguments, const Scope&) {
  return AsLong(TextLength(TextOf(arguments[0])));
}

Value Left(Arguments arguments, const Scope&) {
  return FirstCharacters(TextOf(arguments[0]), CountOf(arguments[1]));
}

/// More characters than there are give the whole text.
Value Right(Arguments arguments, const Scope&) {
  const std::u32string text = Characters(arguments[0]);
  const std::size_t count = std::min(CountOf(arguments[1]), text.size());
  return FromCodePoints(std::u32string_view(text).substr(text.size() - count));
}

/// A place behind the end gives an empty text.
Value Mid(Arguments arguments, const Scope&) {
  const std::u32string text = Characters(arguments[0]);
  const std::size_t place = std::min(PlaceOf(arguments[1]), text.size());
  const std::size_t count = arguments.size() > 2 ? CountOf(arguments[2]) : text.size();
  return FromCodePoints(std::u32string_view(text).substr(place, count));
}

/// Capitals and small letters of all scripts that have them, by one table on every system.
Value UCase(Arguments arguments, const Scope&) {
  return UpperCase(TextOf(arguments[0]));
}
Value LCase(Arguments arguments, const Scope&) {
  return LowerCase(TextOf(arguments[0]));
}

Value TrimBoth(Arguments arguments, const Scope&) {
  return Trim(TextOf(arguments[0]));
}

/// Blanks alone; tabs and ends of lines stay.
Value LTrim(Arguments arguments, const Scope&) {
  std::string text = TextOf(arguments[0]);
  return text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
}

Value RTrim(Arguments arguments, const Scope&) {
  std::string text = TextOf(arguments[0]);
  return text.erase(text.find_last_not_of(' ') + 1);
}

/// InStr([start,] text, wanted [, comparison]); with a comparison the start must be given.
Value InStr(Arguments arguments, const Scope&) {
  const bool hasStart = arguments.size() > 2;
  const std::size_t start = hasStart ? PlaceOf(arguments[0]) : 0;
  // Two arguments are texts; with a third the start stands before them.
  const Arguments texts = arguments.subspan(hasStart ? 1 : 0);
  const bool binary = IsBinary(arguments, 3);
  const std::u32string text = SearchForm(Characters(texts[0]), binary);
  const std::u32string wanted = SearchForm(Characters(texts[1]), binary);
  // Nothing is found behind the end, an empty text neither.
  if (start >= text.size()) return 0;
  const std::size_t place = text.find(wanted, start);
  return place == std::u32string::npos ? 0 : AsLong(place + 1);
}

/// InStrRev(text, wanted [, start [, comparison]]); the start -1 is the end.
Value InStrRev(Arguments arguments, const Scope&) {
  const bool binary = IsBinary(arguments, 3);
  const std::u32string text = SearchForm(Characters(arguments[0]), binary);
  const std::u32string wanted = SearchForm(Characters(arguments[1]), binary);
  std::size_t end = text.size();
  // What is found must end at the start at the latest, so the search begins that much further left.
  if (arguments.size() > 2 && LongOf(arguments[2]) != -1) end = PlaceOf(arguments[2]) + 1;
  if (text.empty() || end > text.size() || wanted.size() > end) return 0;
  const std::size_t place = text.rfind(wanted, wanted.empty() ? end - 1 : end - wanted.size());
  return place == std::u32string::npos ? 0 : AsLong(place + 1);
}

/// Replace(text, wanted, other [, start [, count [, comparison]]]): the text from `start` on, at most `count` times.
Value Replace(Arguments arguments, const Scope&) {
  // Optional arguments are told by how many there are, as none can be left out in the middle.
  const std::size_t start = arguments.size() > 3 ? PlaceOf(arguments[3]) : 0;
  const std::int32_t most = arguments.size() > 4 ? LongOf(arguments[4]) : -1;
  // -1 stands for all of them.
  if (most < -1) RaiseInvalidCall("the number of replacements is negative");
  const bool binary = IsBinary(arguments, 5);
  const std::u32string whole = Characters(arguments[0]);
  const std::u32string text = whole.substr(std::min(start, whole.size()));
  const std::u32string form = SearchForm(text, binary);
  const std::u32string wanted = SearchForm(Characters(arguments[1]), binary);
  const std::string other = TextOf(arguments[2]);
  // An empty text would be found for ever.
  if (wanted.empty()) return FromCodePoints(text);
  std::string result;
  std::size_t done = 0;
  for (std::int32_t count = 0; count != most; ++count) {
    const std::size_t place = form.find(wanted, done);
    if (place == std::u32string::npos) break;
    result += FromCodePoints(std::u32string_view(text).substr(done, place - done)) + other;
    CheckLength(result.size());
    done = place + wanted.size();
  }
  return result + FromCodePoints(std::u32string_view(text).substr(done));
}

/// The length is bounded before the text is made.
Value Space(Arguments arguments, const Scope&) {
  const std::size_t count = CountOf(arguments[0]);
  CheckLength(count);
  return std::string(count, ' ');
}

/// Codes are those of the Western code page: Chr(128) is the euro sign.
char32_t CharacterOfCode(const Value& code) {
  const std::int32_t number = LongOf(code);
  constexpr std::int32_t kLastCode = 255;
  if (number < 0 || number > kLastCode) RaiseInvalidCall("character codes are 0 to 255");
  return CharacterOfByte(static_cast<std::uint8_t>(number), kWesternCodePage);
}

char32_t FirstCharacter(const Value& value) {
  const std::u32string text = Characters(value);
  if (text.empty()) RaiseInvalidCall("an empty text has no first character");
  return text.front();
}

/// String(count, character): a code or a text whose first character counts.
Value String(Arguments arguments, const Scope&) {
  const std::size_t count = CountOf(arguments[0]);
  const bool isText = std::holds_alternative<std::string>(arguments[1]);
  const char32_t character = isText ? FirstCharacter(arguments[1]) : CharacterOfCode(arguments[1]);
  // A character has up to four bytes in a text.
  constexpr std::size_t kMostBytes = 4;
  CheckLength(count * kMostBytes);
  return FromCodePoints(std::u32string(count, character));
}

/// Without the argument by the file's sort order, in which a hyphen counts only when all else is equal.
Value StrComp(Arguments arguments, const Scope&) {
  const std::string left = TextOf(arguments[0]);
  const std::string right = TextOf(arguments[1]);
  const int order =
      IsBinary(arguments, 2) ? ToCodePoints(left).compare(ToCodePoints(right)) : CollationCompare(left, right);
  return order < 0 ? -1 : order > 0 ? 1 : 0;
}

/// By code points: an accent that is a character of its own moves to the other neighbour.
Value StrReverse(Arguments arguments, const Scope&) {
  std::u32string text = Characters(arguments[0]);
  std::reverse(text.begin(), text.end());
  return FromCodePoints(text);
}

/// As Chr, by the code page of Western Europe, whatever the system's own is: a file must not mean different things on
/// two machines. What the page lacks is a question mark.
Value Asc(Arguments arguments, const Scope&) {
  return std::int32_t{ByteOfCharacter(FirstCharacter(arguments[0]), kWesternCodePage).value_or('?')};
}
/// The number of the code point, whichever alphabet it is of.
Value AscW(Arguments arguments, const Scope&) {
  return static_cast<std::int32_t>(FirstCharacter(arguments[0]));
}

Value Chr(Arguments arguments, const Scope&) {
  return FromCodePoints(std::u32string(1, CharacterOfCode(arguments[0])));
}

Value ChrW(Arguments arguments, const Scope&) {
  const std::int32_t code = LongOf(arguments[0]);
  constexpr std::int32_t kLastCode = 0x10FFFF;
  if (code < 0 || code > kLastCode) RaiseInvalidCall("there is no such character");
  return FromCodePoints(std::u32string(1, static_cast<char32_t>(code)));
}

/// Words begin behind blanks alone: "O'neill", "Smith-jones".
std::string ProperCase(const std::string& text) {
  std::u32string characters = ToCodePoints(text);
  bool beginsWord = true;
  for (char32_t& character : characters) {
    character = beginsWord ? UpperCase(character) : LowerCase(character);
    beginsWord = character <= U' ';
  }
  return FromCodePoints(characters);
}

Value StrConv(Arguments arguments, const Scope&) {
  const std::string text = TextOf(arguments[0]);
  switch (LongOf(arguments[1])) {
    case 1:
      return UpperCase(text);
    case 2:
      return LowerCase(text);
    case 3:
      return ProperCase(text);
    default:
      RaiseInvalidCall("StrConv knows 1 (upper case), 2 (lower case) and 3 (capitals at the start of words)");
  }
}

// Least and most arguments, then what a Null among them means: here it always makes the result Null.
constexpr Function kTextFunctions[] = {
    {"LEN", 1, 1, kPropagate, Gives::Long, Len},           {"LEFT", 2, 2, kPropagate, Gives::Text, Left},
    {"RIGHT", 2, 2, kPropagate, Gives::Text, Right},       {"MID", 2, 3, kPropagate, Gives::Text, Mid},
    {"UCASE", 1, 1, kPropagate, Gives::Text, UCase},       {"LCASE", 1, 1, kPropagate, Gives::Text, LCase},
    {"TRIM", 1, 1, kPropagate, Gives::Text, TrimBoth},     {"LTRIM", 1, 1, kPropagate, Gives::Text, LTrim},
    {"RTRIM", 1, 1, kPropagate, Gives::Text, RTrim},       {"INSTR", 2, 4, kPropagate, Gives::Long, InStr},
    {"INSTRREV", 2, 4, kPropagate, Gives::Long, InStrRev}, {"REPLACE", 3, 6, kPropagate, Gives::Text, Replace},
    {"SPACE", 1, 1, kPropagate, Gives::Text, Space},       {"STRING", 2, 2, kPropagate, Gives::Text, String},
    {"STRCOMP", 2, 3, kPropagate, Gives::Long, StrComp},   {"STRREVERSE", 1, 1, kPropagate, Gives::Text, StrReverse},
    {"ASC", 1, 1, kPropagate, Gives::Long, Asc},           {"ASCW", 1, 1, kPropagate, Gives::Long, AscW},
    {"CHR", 1, 1, kPropagate, Gives::Text, Chr},           {"CHRW", 1, 1, kPropagate, Gives::Text, ChrW},
    {"STRCONV", 2, 2, kPropagate, Gives::Text, StrConv},
};

}  // namespace

std::span<const Function> TextFunctions() {
  return kTextFunctions;
}

}  // namespace tavi::access::sql
