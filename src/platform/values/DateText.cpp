#include "platform/values/DateText.h"

#include <string>
#include <vector>

#include "platform/values/Date.h"
#include "platform/values/Text.h"

namespace tavi {
namespace {

/// A number (with its count of digits), a word, or another character of the text. Blanks are left out.
struct TextPiece {
  enum class Kind { Number, Word, Sign } kind = Kind::Sign;
  int number = 0;
  std::size_t digits = 0;
  std::string_view text;
};

constexpr std::size_t kLongestNumber = 4;

bool IsLetter(char character) {
  return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

std::optional<std::vector<TextPiece>> CutIntoPieces(std::string_view text) {
  constexpr std::size_t kMostPieces = 16;
  std::vector<TextPiece> pieces;
  for (std::size_t place = 0; place < text.size();) {
    if (text[place] == ' ') {
      ++place;
      continue;
    }
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

class DateReader {
 public:
  DateReader(std::vector<TextPiece> pieces, DateOrder order) : pieces_(std::move(pieces)), order_(order) {}

  std::optional<Date> Read() {
    std::optional<int> second = 0;
    std::optional<int> day = 0;
    bool hasTime = BeginsTime();
    if (hasTime) second = ReadTime();
    const bool hasDate = second && place_ < pieces_.size();
    if (hasDate) day = ReadDay();
    if (hasDate && day && !hasTime && place_ < pieces_.size()) {
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

  [[nodiscard]] bool BeginsTime() const { return Is(0, Kind::Number) && (IsSign(1, ":") || IsHalfOfDay(1)); }

  /// h:mm[:ss[.fraction]] [AM|PM], or h AM|PM: seconds since midnight.
  std::optional<int> ReadTime() {
    int fields[3] = {pieces_[place_++].number, 0, 0};
    for (std::size_t i = 1; i < 3 && IsSign(0, ":"); ++i) {
      if (!Is(1, Kind::Number)) return std::nullopt;
      fields[i] = pieces_[place_ + 1].number;
      place_ += 2;
    }
    if (IsSign(0, ".") && Is(1, Kind::Number)) place_ += 2;
    if (IsHalfOfDay(0)) {
      if (fields[0] < 1 || fields[0] > 12) return std::nullopt;
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
      const bool isSeparator = IsSign(0, "/") || IsSign(0, "-") || IsSign(0, ".") || IsSign(0, ",");
      if (count < 2 && isSeparator) ++place_;
    }
    if (count < 3) return std::nullopt;
    for (std::size_t i = 0; i < 2; ++i) {
      if (parts[i].kind != Kind::Word) continue;
      const TextPiece& other = parts[1 - i];
      const int month = MonthOfName(parts[i].text);
      return other.digits > 2 ? DayOf(other, month, parts[2].number) : DayOf(parts[2], month, other.number);
    }
    if (parts[2].kind != Kind::Number) return std::nullopt;
    if (parts[0].digits > 2) return DayOf(parts[0], parts[1].number, parts[2].number);
    int month = order_ == DateOrder::MonthFirst ? parts[0].number : parts[1].number;
    int day = order_ == DateOrder::MonthFirst ? parts[1].number : parts[0].number;
    if (month > 12) std::swap(month, day);
    return DayOf(parts[2], month, day);
  }

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
