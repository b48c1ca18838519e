#include "platform/values/DateText.h"

#include <string>
#include <vector>

#include "platform/values/Date.h"
#include "platform/values/Text.h"

// A date text is cut into pieces first (numbers, words, signs; blanks go), then read from left to right: a time, a
// date, or both in either order, and nothing may be left over. Which number is the year, the month and the day is told
// by three things, in this order: a month's name, a number of more than two digits (the year), the order asked for.
//
//   3 May 2001      number word number    the word is the month, the year the longer number, else the last one
//   2001-05-03      the first has four digits: year, month, day
//   13/5/2001       no month 13, so month and day change places, whatever the order
//
// The cost is that of the length of the text, of which at most 16 pieces are read.
namespace tavi {
namespace {

/// A number (with its count of digits), a word, or another character of the text. Blanks are left out.
struct TextPiece {
  enum class Kind { Number, Word, Sign } kind = Kind::Sign;
  int number = 0;
  std::size_t digits = 0;
  std::string_view text;
};

// No part of a date has more digits than a year, and four always fit an int.
constexpr std::size_t kLongestNumber = 4;

bool IsLetter(char character) {
  return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

/// The pieces of a text that might be a date; nothing when a number is too long, or when there are more pieces than any
/// date has, so that a long text costs no more than a short one.
std::optional<std::vector<TextPiece>> CutIntoPieces(std::string_view text) {
  constexpr std::size_t kMostPieces = 16;
  std::vector<TextPiece> pieces;
  for (std::size_t place = 0; place < text.size();) {
    if (text[place] == ' ') {
      ++place;
      continue;
    }
    // A sign is a piece of one character, even when the next one is the same: "//" never stands for one separator.
    const auto isSame = IsDigit(text[place]) ? IsDigit : IsLetter;
    std::size_t length = 1;
    if (isSame(text[place])) {
      while (place + length < text.size() && isSame(text[place + length])) ++length;
    }
    TextPiece piece{TextPiece::Kind::Sign, 0, 0, text.substr(place, length)};
    if (IsDigit(text[place])) {
      if (length > kLongestNumber) return std::nullopt;
      piece.kind = TextPiece::Kind::Number;
      piece.number = std::stoi(std::string(piece.text));
      piece.digits = length;
    } else if (IsLetter(text[place])) {
      piece.kind = TextPiece::Kind::Word;
    }
    pieces.push_back(piece);
    if (pieces.size() > kMostPieces) return std::nullopt;
    place += length;
  }
  return pieces;
}

/// Goes once over the pieces; place_ is the next one that has not been read. A part that does not fit leaves nothing,
/// and then the whole text is no date.
class DateReader {
 public:
  DateReader(std::vector<TextPiece> pieces, DateOrder order) : pieces_(std::move(pieces)), order_(order) {}

  /// A text of only a time is that time on day 0, 30 December 1899, as a date without a day is stored.
  std::optional<Date> Read() {
    std::optional<int> second = 0;
    std::optional<int> day = 0;
    // A time may stand alone, before a day or behind it, but only once.
    bool hasTime = BeginsTime();
    if (hasTime) second = ReadTime();
    const bool hasDate = second && place_ < pieces_.size();
    if (hasDate) day = ReadDay();
    if (hasDate && day && !hasTime && place_ < pieces_.size()) {
      // The T of the ISO form has to be followed by a time; without it the time follows a blank, which is no piece.
      const bool isIso = pieces_[place_].kind == TextPiece::Kind::Word && EqualIgnoringCase(pieces_[place_].text, "T");
      if (isIso) ++place_;
      hasTime = BeginsTime();
      if (isIso && !hasTime) return std::nullopt;
      if (hasTime) second = ReadTime();
    }
    if (!(hasDate || hasTime) || !day || !second || place_ < pieces_.size()) return std::nullopt;
    return Date::AtSecond(*day, *second);
  }

 private:
  using Kind = TextPiece::Kind;

  [[nodiscard]] bool Is(std::size_t ahead, Kind kind) const {
    return place_ + ahead < pieces_.size() && pieces_[place_ + ahead].kind == kind;
  }
  [[nodiscard]] bool IsSign(std::size_t ahead, std::string_view sign) const {
    return Is(ahead, Kind::Sign) && pieces_[place_ + ahead].text == sign;
  }
  [[nodiscard]] bool IsHalfOfDay(std::size_t ahead) const {
    return Is(ahead, Kind::Word) && (EqualIgnoringCase(pieces_[place_ + ahead].text, "AM") ||
                                     EqualIgnoringCase(pieces_[place_ + ahead].text, "PM"));
  }

  /// "14:", or "2 PM": a number alone could as well be a day.
  [[nodiscard]] bool BeginsTime() const { return Is(0, Kind::Number) && (IsSign(1, ":") || IsHalfOfDay(1)); }

  /// h:mm[:ss[.fraction]] [AM|PM], or h AM|PM: seconds since midnight.
  std::optional<int> ReadTime() {
    int fields[3] = {pieces_[place_++].number, 0, 0};
    for (std::size_t i = 1; i < 3 && IsSign(0, ":"); ++i) {
      if (!Is(1, Kind::Number)) return std::nullopt;
      fields[i] = pieces_[place_ + 1].number;
      place_ += 2;
    }
    // The fraction of a second is read over: times are kept to the second.
    if (IsSign(0, ".") && Is(1, Kind::Number)) place_ += 2;
    if (IsHalfOfDay(0)) {
      if (fields[0] < 1 || fields[0] > 12) return std::nullopt;
      // 12 AM is midnight, 12 PM noon.
      fields[0] = fields[0] % 12 + (EqualIgnoringCase(pieces_[place_].text, "PM") ? 12 : 0);
      ++place_;
    }
    if (fields[0] > 23 || fields[1] > 59 || fields[2] > 59) return std::nullopt;
    return (int{fields[0]} * 60 + fields[1]) * 60 + fields[2];
  }

  /// Three parts, one of which may be a month's name.
  std::optional<int> ReadDay() {
    TextPiece parts[3];
    std::size_t count = 0;
    for (; count < 3 && (Is(0, Kind::Number) || Is(0, Kind::Word)); ++count) {
      parts[count] = pieces_[place_++];
      // Separators need not be the same twice ("3-May 2001"), and none is needed around a word or where a blank stood;
      // behind the year none is taken, because what follows would be a time.
      const bool isSeparator = IsSign(0, "/") || IsSign(0, "-") || IsSign(0, ".") || IsSign(0, ",");
      if (count < 2 && isSeparator) ++place_;
    }
    if (count < 3) return std::nullopt;
    // A month's name stands first ("May 3, 2001") or second ("3 May 2001", "2001 May 3"); a word that is no month gives
    // month 0, for which there is no day.
    for (std::size_t i = 0; i < 2; ++i) {
      if (parts[i].kind != Kind::Word) continue;
      const TextPiece& other = parts[1 - i];
      const int month = MonthOfName(parts[i].text);
      return other.digits > 2 ? DayOf(other, month, parts[2].number) : DayOf(parts[2], month, other.number);
    }
    if (parts[2].kind != Kind::Number) return std::nullopt;
    if (parts[0].digits > 2) return DayOf(parts[0], parts[1].number, parts[2].number);
    // Three numbers of which the first is no year. Exchanging day and month when the month cannot be one is what Access
    // does with such texts; when both may be months the order decides.
    int month = order_ == DateOrder::MonthFirst ? parts[0].number : parts[1].number;
    int day = order_ == DateOrder::MonthFirst ? parts[1].number : parts[0].number;
    if (month > 12) std::swap(month, day);
    return DayOf(parts[2], month, day);
  }

  /// The day number; nothing for a day that its month does not have. Two digits of a year mean 1930 to 2029: years
  /// before 100 are outside of the calendar of dates anyhow.
  static std::optional<int> DayOf(const TextPiece& yearPiece, int month, int day) {
    if (yearPiece.kind != Kind::Number) return std::nullopt;
    const int year = yearPiece.digits <= 2 ? FullYear(yearPiece.number) : yearPiece.number;
    if (day < 1 || day > DaysInMonth(year, month)) return std::nullopt;
    return Date::FromCivil(year, month, day).DayNumber();
  }

  std::vector<TextPiece> pieces_;
  DateOrder order_;
  std::size_t place_ = 0;
};

}  // namespace

std::optional<Date> ParseDateText(std::string_view text, DateOrder order) {
  std::optional<std::vector<TextPiece>> pieces = CutIntoPieces(text);
  if (!pieces) return std::nullopt;
  return DateReader(std::move(*pieces), order).Read();
}

}  // namespace tavi
