// Numbers by patterns. A number is its digits and the place of its point, a pattern the places that take them:
//
//   "#,##0.0" of 1234.56     digits 123456, point behind 4; rounded to one decimal: 12346, point behind 4
//     places # # # 0         thousands to ones: 1 2 3 4. In groups, because a comma stands between places
//     place 0                one decimal
//     result                 1,234.6
//
// Working with digits and not with the number keeps amounts exact, rounds what people see (0.5 up, 1.005 too), and
// shifts by powers of ten without error. Steps: choose the section for the sign, read it into places, shift and round,
// put the digits into the places.
#include <algorithm>
#include <cmath>
#include <vector>

#include "access/sql/expression/Coercion.h"
#include "access/sql/expression/FormatText.h"
#include "platform/values/Digits.h"

namespace tavi::access::sql {
namespace {

/// The magnitude of a number: digits without zeros at either end, the point behind the first `point` of them (which may
/// lie outside).
class Digits {
 public:
  explicit Digits(const Value& number) {
    // Amounts and decimals have more digits than a double holds.
    if (std::holds_alternative<Currency>(number) || std::holds_alternative<Decimal>(number)) {
      ReadPlain(TextOf(number));
    } else {
      ReadDouble(std::abs(NumberOf(number)));
    }
    Normalize();
  }

  [[nodiscard]] bool IsZero() const { return digits_.empty(); }
  [[nodiscard]] int Point() const { return point_; }
  void Shift(int places) { point_ += IsZero() ? 0 : places; }

  /// Rounds to a number of decimals.
  /// Halves go away from zero. Of a number whose first digit lies two places or more behind the last one that is kept
  /// nothing is left.
  void Round(int decimals) {
    const int kept = point_ + decimals;
    if (kept >= static_cast<int>(digits_.size())) return;
    if (kept < 0) {
      digits_.clear();
    } else {
      const bool goesUp = digits_[static_cast<std::size_t>(kept)] >= '5';
      digits_.resize(static_cast<std::size_t>(kept));
      if (goesUp) Increment();
    }
    Normalize();
  }

  /// The digit so many places before (0: ones, 1: tens) or behind (-1: tenths) the point.
  [[nodiscard]] char At(int power) const {
    const int index = point_ - 1 - power;
    return index >= 0 && index < static_cast<int>(digits_.size()) ? digits_[static_cast<std::size_t>(index)] : '0';
  }
  /// Whole digits; decimals.
  [[nodiscard]] int WholeCount() const { return std::max(point_, 0); }
  [[nodiscard]] int DecimalCount() const { return std::max(static_cast<int>(digits_.size()) - point_, 0); }

 private:
  void ReadPlain(const std::string& text) {
    const std::size_t start = text.starts_with('-') ? 1 : 0;
    const std::size_t end = std::min(text.find('.'), text.size());
    digits_ = text.substr(start, end - start);
    point_ = static_cast<int>(digits_.size());
    if (end < text.size()) digits_ += text.substr(end + 1);
  }

  void ReadDouble(double number) {
    if (!std::isfinite(number)) RaiseTypeConflict();
    DecimalDigits read = RoundedDigits(number, kSignificantDigits);
    digits_ = std::move(read.digits);
    point_ = read.exponent + 1;
  }

  /// Carries over nines: 99.9 becomes 100, which has a digit more before the point.
  void Increment() {
    std::size_t place = digits_.size();
    while (place > 0 && digits_[place - 1] == '9') digits_[--place] = '0';
    if (place > 0) {
      ++digits_[place - 1];
    } else {
      digits_.insert(digits_.begin(), '1');
      ++point_;
    }
  }

  /// Zeros at either end say nothing: the point moves with those that go from the front.
  void Normalize() {
    digits_.erase(digits_.find_last_not_of('0') + 1);
    const std::size_t zeros = std::min(digits_.find_first_not_of('0'), digits_.size());
    digits_.erase(0, zeros);
    point_ = digits_.empty() ? 0 : point_ - static_cast<int>(zeros);
  }

  std::string digits_;
  int point_ = 0;
};

/// One of the patterns between the semicolons, taken apart.
struct Layout {
  struct Piece {
    enum class Kind { Zero, Optional, Point, Exponent, Text } kind = Kind::Text;
    std::string text;
    int exponentDigits = 0;
    bool exponentPlus = false;
  };
  std::vector<Piece> pieces;
  int wholePlaces = 0;
  int minimumWhole = 0;  ///< from the first 0 on
  int decimals = 0;
  int shift = 0;  ///< powers of ten by percent signs and thousands
  bool groups = false;
  bool scientific = false;
};

using Piece = Layout::Piece;

/// Reads one section from left to right. What a comma means is only known at the next digit place, or when none comes.
class LayoutReader {
 public:
  explicit LayoutReader(std::string_view pattern) : pattern_(pattern) {}

  Layout Read() {
    while (place_ < pattern_.size()) ReadPiece();
    EndWhole();
    return std::move(layout_);
  }

 private:
  void ReadPiece() {
    const char character = pattern_[place_];
    if (character == '0' || character == '#') {
      AddDigit(character == '0' ? Piece::Kind::Zero : Piece::Kind::Optional);
    } else if (character == '.' && !hasPoint_) {
      EndWhole();
      hasPoint_ = true;
      layout_.pieces.push_back({Piece::Kind::Point, ".", 0, false});
    } else if (character == ',') {
      if (layout_.wholePlaces > 0 && !hasPoint_) ++commas_;
    } else if ((character == 'E' || character == 'e') && BeginsExponent()) {
      ReadExponent();
      return;
    } else if (character == '\\' || character == '"') {
      ReadQuoted(character);
      return;
    } else {
      if (character == '%') layout_.shift += 2;
      layout_.pieces.push_back({Piece::Kind::Text, std::string(1, character), 0, false});
    }
    ++place_;
  }

  void AddDigit(Piece::Kind kind) {
    layout_.pieces.push_back({kind, {}, 0, false});
    if (hasPoint_) {
      ++layout_.decimals;
      return;
    }
    if (commas_ > 0) layout_.groups = true;
    commas_ = 0;
    ++layout_.wholePlaces;
    // Behind a 0 every place is filled: "0##" has three digits at least.
    if (kind == Piece::Kind::Zero || layout_.minimumWhole > 0) ++layout_.minimumWhole;
  }

  /// Commas that no digit has followed divide by a thousand each.
  void EndWhole() {
    layout_.shift -= 3 * commas_;
    commas_ = 0;
  }

  [[nodiscard]] bool BeginsExponent() const {
    return place_ + 2 < pattern_.size() && (pattern_[place_ + 1] == '+' || pattern_[place_ + 1] == '-') &&
           pattern_[place_ + 2] == '0' && !layout_.scientific;
  }

  void ReadExponent() {
    EndWhole();
    Piece piece{Piece::Kind::Exponent, std::string(1, pattern_[place_]), 0, pattern_[place_ + 1] == '+'};
    for (place_ += 2; place_ < pattern_.size() && pattern_[place_] == '0'; ++place_) ++piece.exponentDigits;
    layout_.pieces.push_back(piece);
    layout_.scientific = true;
  }

  /// A quote that is not closed reaches to the end.
  void ReadQuoted(char quote) {
    ++place_;
    const std::size_t end =
        quote == '\\' ? std::min(place_ + 1, pattern_.size()) : std::min(pattern_.find('"', place_), pattern_.size());
    layout_.pieces.push_back({Piece::Kind::Text, std::string(pattern_.substr(place_, end - place_)), 0, false});
    place_ = quote == '\\' ? end : std::min(end + 1, pattern_.size());
  }

  std::string_view pattern_;
  std::size_t place_ = 0;
  bool hasPoint_ = false;
  int commas_ = 0;
  Layout layout_;
};

/// The sign of a positive exponent is written for E+ only.
std::string ExponentText(const Piece& piece, int exponent) {
  std::string digits = std::to_string(std::abs(exponent));
  const auto wanted = static_cast<std::size_t>(piece.exponentDigits);
  if (digits.size() < wanted) digits.insert(0, wanted - digits.size(), '0');
  return piece.text + (exponent < 0 ? "-" : piece.exponentPlus ? "+" : "") + digits;
}

/// The whole digits that one place of the layout stands for: the first place stands for all that are left over.
std::string WholeText(const Layout& layout, const Digits& digits, int placesLeft, bool isFirst) {
  std::string text;
  const int shown = std::max(digits.WholeCount(), layout.minimumWhole);
  const int highest = isFirst ? std::max(shown, placesLeft) - 1 : placesLeft - 1;
  for (int power = highest; power >= placesLeft - 1; --power) {
    // A # for which there is no digit is left out, and its comma with it.
    if (power >= shown) continue;
    text.push_back(digits.At(power));
    if (layout.groups && power > 0 && power % 3 == 0) text.push_back(',');
  }
  return text;
}

/// Walks the pieces from left to right; `placesLeft` counts the whole places that are still to come, the current one
/// included.
std::string Render(const Layout& layout, const Digits& digits, int exponent) {
  std::string text;
  int placesLeft = layout.wholePlaces;
  int decimal = 0;
  bool hasPoint = false;
  for (const Piece& piece : layout.pieces) {
    switch (piece.kind) {
      case Piece::Kind::Text:
        text += piece.text;
        break;
      case Piece::Kind::Point:
        // A pattern that begins with the point still shows whole digits, where there are any.
        if (layout.wholePlaces == 0) text += WholeText(layout, digits, 1, true);
        hasPoint = true;
        text.push_back('.');
        break;
      case Piece::Kind::Exponent:
        text += ExponentText(piece, exponent);
        break;
      default:
        if (!hasPoint) {
          text += WholeText(layout, digits, placesLeft, placesLeft == layout.wholePlaces);
          --placesLeft;
        } else if (++decimal; piece.kind == Piece::Kind::Zero || decimal <= digits.DecimalCount()) {
          text.push_back(digits.At(-decimal));
        }
    }
  }
  return text;
}

/// The sections of a pattern. Semicolons in quotes or behind a backslash are characters like others.
std::vector<std::string_view> Sections(std::string_view pattern) {
  std::vector<std::string_view> sections;
  bool isQuoted = false;
  std::size_t start = 0;
  for (std::size_t place = 0; place < pattern.size(); ++place) {
    if (pattern[place] == '"') isQuoted = !isQuoted;
    if (pattern[place] == '\\' && !isQuoted) ++place;
    if (place >= pattern.size() || pattern[place] != ';' || isQuoted) continue;
    sections.push_back(pattern.substr(start, place - start));
    start = place + 1;
  }
  sections.push_back(pattern.substr(start));
  return sections;
}

}  // namespace

// The sign decides by the number as it is, before it is rounded: -0.001 takes the section for negative ones.
std::string FormatNumber(const Value& number, std::string_view pattern) {
  const std::vector<std::string_view> sections = Sections(pattern);
  const double amount = NumberOf(number);
  const std::size_t wanted = amount < 0.0 ? 1 : amount == 0.0 ? 2 : 0;
  // A section that is missing or empty leaves its numbers to the first one, which gives negative ones their sign.
  const bool hasOwn = wanted < sections.size() && !sections[wanted].empty();
  const Layout layout = LayoutReader(hasOwn ? sections[wanted] : sections[0]).Read();
  Digits digits(number);
  digits.Shift(layout.shift);
  int exponent = 0;
  if (layout.scientific && !digits.IsZero()) {
    // Rounding may add a digit (9.99 to 10.0), so that a second turn is needed to have as many as there are places.
    for (int turn = 0; turn < 2; ++turn) {
      const int excess = digits.Point() - std::max(layout.wholePlaces, 1);
      digits.Shift(-excess);
      exponent += excess;
      digits.Round(layout.decimals);
    }
  } else {
    digits.Round(layout.decimals);
  }
  // What is rounded to zero has no sign.
  const bool needsSign = amount < 0.0 && !(hasOwn && wanted == 1) && !digits.IsZero();
  return (needsSign ? "-" : "") + Render(layout, digits, exponent);
}

}  // namespace tavi::access::sql
