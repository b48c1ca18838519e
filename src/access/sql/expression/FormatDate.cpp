// Dates by patterns. A pattern is cut into pieces: runs of one letter, which are fields by letter and length, markers
// such as AM/PM, and everything else, which stands for itself:
//
//   "d mmm yyyy, h:nn AM/PM"   of 5 March 2026, 14:07   is   5 Mar 2026, 2:07 PM
//
// The pieces are walked twice: a marker anywhere makes the hours those of twelve, also before it.
#include <algorithm>

#include "access/sql/expression/DateArithmetic.h"
#include "access/sql/expression/FormatText.h"
#include "platform/values/Date.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {
namespace {

constexpr int kSunday = 1;

std::string Padded(int number, std::size_t digits) {
  std::string text = std::to_string(number);
  if (text.size() < digits) text.insert(0, digits - text.size(), '0');
  return text;
}

char LowerAscii(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

/// A run of one letter, a marker of the half of the day, or a text, at a place of a pattern.
struct DatePiece {
  enum class Kind { Letters, HalfOfDay, Text } kind = Kind::Text;
  std::string_view text;   ///< without quotes
  std::size_t length = 1;  ///< in the pattern
};

/// Letters that are no fields stand for themselves.
DatePiece PieceAt(std::string_view pattern, std::size_t place) {
  const char letter = LowerAscii(pattern[place]);
  if (letter == '\\') return {DatePiece::Kind::Text, pattern.substr(place + 1, 1), 2};
  // A quote that is not closed reaches to the end.
  if (letter == '"') {
    const std::size_t end = std::min(pattern.find('"', place + 1), pattern.size());
    return {DatePiece::Kind::Text, pattern.substr(place + 1, end - place - 1), end - place + 1};
  }
  for (const std::string_view marker : {"AM/PM", "A/P", "AMPM"}) {
    const std::string_view here = pattern.substr(place, marker.size());
    if (EqualIgnoringCase(here, marker)) return {DatePiece::Kind::HalfOfDay, here, marker.size()};
  }
  // c both, d day, w weekday and week, m month or minute, q quarter, y year, h hour, n minute, s second, t time.
  constexpr std::string_view kLetters = "cdwmqyhnst";
  if (kLetters.find(letter) == std::string_view::npos) return {DatePiece::Kind::Text, pattern.substr(place, 1), 1};
  std::size_t length = 1;
  while (place + length < pattern.size() && LowerAscii(pattern[place + length]) == letter) ++length;
  return {DatePiece::Kind::Letters, pattern.substr(place, length), length};
}

class DateFormatter {
 public:
  DateFormatter(Date date, std::string_view pattern)
      : date_(date), civil_(date.Civil()), second_(date.SecondOfDay()), pattern_(pattern) {}

  std::string Run() {
    for (std::size_t place = 0; place < pattern_.size();) {
      const DatePiece piece = PieceAt(pattern_, place);
      if (piece.kind == DatePiece::Kind::HalfOfDay) isHalved_ = true;
      place += piece.length;
    }
    std::string text;
    for (std::size_t place = 0; place < pattern_.size();) {
      const DatePiece piece = PieceAt(pattern_, place);
      place += piece.length;
      if (piece.kind == DatePiece::Kind::Text) {
        text += piece.text;
      } else if (piece.kind == DatePiece::Kind::HalfOfDay) {
        text += HalfOfDay(piece.text);
      } else {
        text += Field(LowerAscii(piece.text.front()), piece.text.size());
        // Text between them, such as a colon, does not part hours from the m behind them.
        followsHours_ = LowerAscii(piece.text.front()) == 'h';
      }
    }
    return text;
  }

 private:
  /// The halves are written as in the marker, "am/pm" in small letters; AMPM, which has no stroke, gives capitals.
  [[nodiscard]] std::string HalfOfDay(std::string_view marker) const {
    constexpr int kNoon = 12 * 3600;
    const std::size_t slash = marker.find('/');
    if (slash == std::string_view::npos) return second_ < kNoon ? "AM" : "PM";
    return std::string(second_ < kNoon ? marker.substr(0, slash) : marker.substr(slash + 1));
  }

  /// Lengths beyond the longest known one are those of the longest, but for t, which stands for itself then.
  [[nodiscard]] std::string Field(char letter, std::size_t length) const {
    switch (letter) {
      case 'd':
        return DayField(length);
      case 'w':
        return std::to_string(
            PartOfDate(length > 1 ? Interval::Week : Interval::Weekday, date_, kSunday, FirstWeek::WithFirstOfJanuary));
      case 'm':
        // The letter of months stands for minutes behind hours: "hh:mm".
        return followsHours_ && length <= 2 ? Padded(second_ / 60 % 60, length) : MonthField(length);
      case 'q':
        return std::to_string((civil_.month - 1) / 3 + 1);
      case 'y':
        // y alone is the day of the year.
        if (length == 1)
          return std::to_string(PartOfDate(Interval::DayOfYear, date_, kSunday, FirstWeek::WithFirstOfJanuary));
        return length == 2 ? Padded(civil_.year % 100, 2) : Padded(civil_.year, 4);
      case 'h':
        // 12, 1, 2 ... 11: there is no hour 0 on a clock.
        return Padded(isHalved_ ? (second_ / 3600 + 11) % 12 + 1 : second_ / 3600, std::min<std::size_t>(length, 2));
      case 'n':
        return Padded(second_ / 60 % 60, std::min<std::size_t>(length, 2));
      case 's':
        return Padded(second_ % 60, std::min<std::size_t>(length, 2));
      case 't':
        return length == 5 ? FormatDate(date_, "hh:nn:ss") : std::string(length, letter);
      default:
        return General();
    }
  }

  [[nodiscard]] std::string DayField(std::size_t length) const {
    if (length <= 2) return Padded(civil_.day, length);
    const std::string_view name = WeekdayName(WeekdayOf(date_.DayNumber()));
    if (length == 3) return std::string(name.substr(0, 3));
    if (length == 4) return std::string(name);
    return FormatDate(date_, length == 5 ? "dd/mm/yyyy" : "d mmmm yyyy");
  }

  [[nodiscard]] std::string MonthField(std::size_t length) const {
    if (length <= 2) return Padded(civil_.month, length);
    const std::string_view name = MonthName(civil_.month);
    return std::string(length == 3 ? name.substr(0, 3) : name);
  }

  /// The date, the time, or both: a time alone has day 0.
  [[nodiscard]] std::string General() const {
    if (second_ == 0) return FormatDate(date_, "dd/mm/yyyy");
    return FormatDate(date_, date_.DayNumber() == 0 ? "hh:nn:ss" : "dd/mm/yyyy hh:nn:ss");
  }

  Date date_;
  CivilDay civil_;
  int second_;
  std::string_view pattern_;
  bool isHalved_ = false;
  bool followsHours_ = false;
};

}  // namespace

std::string FormatDate(Date date, std::string_view pattern) {
  return DateFormatter(date, pattern).Run();
}

// The same pieces as for writing: what is quoted makes no pattern of dates.
bool IsDatePattern(std::string_view pattern) {
  for (std::size_t place = 0; place < pattern.size();) {
    const DatePiece piece = PieceAt(pattern, place);
    if (piece.kind != DatePiece::Kind::Text) return true;
    place += piece.length;
  }
  return false;
}

}  // namespace tavi::access::sql
