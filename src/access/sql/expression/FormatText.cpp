// The function Format: what a pattern is for is told by its characters and by the value.
//
//   a named pattern                   the pattern that it stands for, once more from the start
//   @ & < > !                         characters of the value's text
//   0 #, or no letters of dates       a number; texts that are none stay as they are
//   d m y h n s and so on             a date
//
// A date goes by a pattern of dates first, since "dd/mm/yyyy" and "0.00" both can be meant for it.
#include "access/sql/expression/FormatText.h"

#include <algorithm>
#include <optional>

#include "access/sql/expression/Coercion.h"
#include "platform/values/Convert.h"
#include "platform/values/DateText.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {
namespace {

struct NamedPattern {
  std::string_view name;
  std::string_view pattern;
};
// Words among them stand letter by letter behind backslashes, since y, s, n and others are letters of dates.
constexpr NamedPattern kNamedPatterns[] = {
    {"Fixed", "0.00"},
    {"Standard", "#,##0.00"},
    {"Currency", "#,##0.00"},
    {"Percent", "0.00%"},
    {"Scientific", "0.00E+00"},
    {"Yes/No", "\\Y\\e\\s;\\Y\\e\\s;\\N\\o"},
    {"True/False", "\\T\\r\\u\\e;\\T\\r\\u\\e;\\F\\a\\l\\s\\e"},
    {"On/Off", "\\O\\n;\\O\\n;\\O\\f\\f"},
    {"General Date", "c"},
    {"Long Date", "dddddd"},
    {"Medium Date", "dd-mmm-yy"},
    {"Short Date", "ddddd"},
    {"Long Time", "ttttt"},
    {"Medium Time", "hh:nn AM/PM"},
    {"Short Time", "hh:nn"},
};

/// True when the pattern holds one of the characters outside quotes.
bool HoldsAny(std::string_view pattern, std::string_view characters) {
  bool isQuoted = false;
  for (std::size_t place = 0; place < pattern.size(); ++place) {
    if (pattern[place] == '"') isQuoted = !isQuoted;
    if (pattern[place] == '\\' && !isQuoted) {
      ++place;
    } else if (!isQuoted && characters.find(pattern[place]) != std::string_view::npos) {
      return true;
    }
  }
  return false;
}

/// A text by a pattern of @ & < > !. Places are filled from the right, with ! from the left; the rest of a longer text
/// is put out as it is.
std::string FormatCharacters(const std::string& text, std::string_view pattern) {
  std::u32string characters = ToCodePoints(text);
  const std::u32string places = ToCodePoints(pattern);
  const bool fromLeft = HoldsAny(pattern, "!");
  const bool isUpper = HoldsAny(pattern, ">");
  const bool isLower = HoldsAny(pattern, "<");
  // Places that are still to be filled, the current one included.
  auto open = static_cast<std::size_t>(
      std::count_if(places.begin(), places.end(), [](char32_t one) { return one == U'@' || one == U'&'; }));
  const std::size_t placeCount = open;
  std::size_t next = 0;
  std::u32string result;
  for (const char32_t place : places) {
    if (place == U'!' || place == U'<' || place == U'>') continue;
    if (place != U'@' && place != U'&') {
      result.push_back(place);
      continue;
    }
    const std::size_t left = characters.size() - next;
    // From the right the first places stay empty when there are fewer characters than places, from the left the last
    // ones.
    const bool isEmpty = fromLeft ? left == 0 : open > left;
    if (isEmpty && place == U'@') result.push_back(U' ');
    if (!isEmpty) {
      // A text longer than its places puts the surplus out at the first one, from the left at the last one.
      std::size_t count = 1;
      const bool takesSurplus = fromLeft ? open == 1 : open == placeCount;
      if (takesSurplus && left > open) count = left - open + 1;
      result += characters.substr(next, count);
      next += count;
    }
    --open;
  }
  if (placeCount == 0) result += characters;
  if (isUpper) return UpperCase(FromCodePoints(result));
  return isLower ? LowerCase(FromCodePoints(result)) : FromCodePoints(result);
}

/// Nothing for a text that writes neither a date nor a number.
std::optional<Date> DateIn(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    if (const std::optional<Date> date = ParseDateText(*text, DateOrder::DayFirst)) return date;
    if (!ParseNumber(*text)) return std::nullopt;
  }
  return DateOf(value);
}

bool IsNumberLike(const Value& value) {
  const auto* text = std::get_if<std::string>(&value);
  return text == nullptr || ParseNumber(*text).has_value();
}

}  // namespace

std::string FormatText(const Value& value, std::string_view pattern) {
  if (std::holds_alternative<Bytes>(value) || std::holds_alternative<Guid>(value)) return TextOf(value);
  // Without a pattern everything reads as it does when texts are joined.
  if (pattern.empty() || EqualIgnoringCase(pattern, "General Number")) return TextOf(value);
  for (const NamedPattern& named : kNamedPatterns) {
    if (EqualIgnoringCase(pattern, named.name)) return FormatText(value, named.pattern);
  }
  const bool isDate = std::holds_alternative<Date>(value) && IsDatePattern(pattern);
  if (!isDate && HoldsAny(pattern, "@&<>!")) return FormatCharacters(TextOf(value), pattern);
  if (!isDate && (HoldsAny(pattern, "0#") || !IsDatePattern(pattern))) {
    return IsNumberLike(value) ? FormatNumber(value, pattern) : TextOf(value);
  }
  const std::optional<Date> date = DateIn(value);
  return date ? FormatDate(*date, pattern) : TextOf(value);
}

}  // namespace tavi::access::sql
