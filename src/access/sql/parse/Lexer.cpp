// A statement's text cut into tokens, in one pass from left to right. Each token keeps where it began, so that errors
// of any later step point at the place. Every byte of the text belongs to a token or is a blank, or is refused:
//
//   Select  [Last Name]  ,       'O''Neill'  ,       #3/1/2026#  ,       &H1F     From  Members
//   Name    QuotedName   Symbol  Literal     Symbol  Literal     Symbol  Literal  Name  Name     End
//
// The text is UTF-8. Its bytes beyond ASCII can only stand in names and texts, where they are copied as they are, so no
// character needs to be decoded; places are turned into characters where an error is told.
#include "access/sql/parse/Lexer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "access/file/EngineError.h"
#include "platform/values/Convert.h"
#include "platform/values/DateText.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {

namespace {

/// Ends of lines are blanks like others; the language has neither comments nor lines.
bool IsBlank(char character) {
  return character == ' ' || character == '\t' || character == '\r' || character == '\n' || character == '\f' ||
         character == '\v';
}

/// Characters outside ASCII are all letters.
bool IsNameStart(char character) {
  return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') || character == '_' ||
         static_cast<unsigned char>(character) >= 0x80;
}

/// The $ is for functions that return texts (Left$).
bool IsNamePart(char character) {
  return IsNameStart(character) || IsDigit(character) || character == '$';
}

/// Keywords are ASCII, so no table of letters is asked.
char UpperAscii(char character) {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

class Lexer {
 public:
  explicit Lexer(std::string_view statement) : statement_(statement) {}

  std::vector<Token> Run() {
    // The limit is one of characters, of which there are never more than bytes: so nearly no text is counted.
    if (statement_.size() > kMaximumStatementLength && TextLength(statement_) > kMaximumStatementLength) {
      RaiseSyntax(statement_, 0,
                  "The statement is longer than " + std::to_string(kMaximumStatementLength) + " characters");
    }
    for (SkipBlanks(); place_ < statement_.size(); SkipBlanks()) ReadToken();
    Add(TokenKind::End, statement_.size(), "");
    return std::move(tokens_);
  }

 private:
  /// The character `ahead` places on; NUL behind the end.
  [[nodiscard]] char At(std::size_t ahead = 0) const {
    return place_ + ahead < statement_.size() ? statement_[place_ + ahead] : '\0';
  }

  void SkipBlanks() {
    while (place_ < statement_.size() && IsBlank(statement_[place_])) ++place_;
  }

  /// One character tells the kind, but for the point, which may begin a number, and &, which joins texts.
  void ReadToken() {
    const char character = At();
    if (IsNameStart(character)) return ReadName();
    if (character == '[') return ReadQuotedName(']');
    if (character == '`') return ReadQuotedName('`');
    if (character == '\'' || character == '"') return ReadText(character);
    if (character == '#') return ReadDate();
    if (IsDigit(character) || (character == '.' && IsDigit(At(1)))) return ReadNumber();
    if (character == '&' && BeginsRadixNumber()) return ReadRadixNumber();
    ReadSymbol();
  }

  /// Keywords are names here: which of them is meant depends on the place, and is the parser's business.
  void ReadName() {
    const std::size_t start = place_;
    while (IsNamePart(At())) ++place_;
    Add(TokenKind::Name, start, std::string(statement_.substr(start, place_ - start)));
  }

  /// There is no way to write the closing sign in such a name; the database refuses such names too.
  void ReadQuotedName(char closing) {
    const std::size_t start = place_;
    const std::size_t end = statement_.find(closing, start + 1);
    if (end == std::string_view::npos) {
      RaiseSyntax(statement_, start,
                  std::string("Syntax error: the name that begins here lacks its closing ") + closing);
    }
    if (end == start + 1) RaiseSyntax(statement_, start, "Syntax error: the brackets hold no name");
    place_ = end + 1;
    Add(TokenKind::QuotedName, start, std::string(statement_.substr(start + 1, end - start - 1)));
  }

  /// Either quote opens a text, which ends at the same one. A doubled one stands for itself.
  void ReadText(char quote) {
    const std::size_t start = place_++;
    std::string text;
    for (;; ++place_) {
      if (place_ >= statement_.size()) {
        RaiseSyntax(statement_, start, "Syntax error in string: the text that begins here lacks its closing quote");
      }
      if (statement_[place_] == quote) {
        if (At(1) != quote) break;
        ++place_;
      }
      text.push_back(statement_[place_]);
    }
    ++place_;
    AddLiteral(start, std::move(text));
  }

  /// Dates in statements are month first wherever the program runs; those in texts are day first.
  void ReadDate() {
    const std::size_t start = place_;
    const std::size_t end = statement_.find('#', start + 1);
    if (end == std::string_view::npos) {
      RaiseSyntax(statement_, start, "Syntax error in date: the date that begins here lacks its closing #");
    }
    const std::string_view text = statement_.substr(start + 1, end - start - 1);
    const std::optional<Date> date = ParseDateText(text, DateOrder::MonthFirst);
    if (!date) {
      RaiseSyntax(statement_, start,
                  "Syntax error in date: write #month/day/year#, #year-month-day# or #hours:minutes:seconds#");
    }
    place_ = end + 1;
    AddLiteral(start, *date);
  }

  /// A sign is no part of it: "1-1" has three tokens. An E that no digits follow begins a name.
  void ReadNumber() {
    const std::size_t start = place_;
    bool whole = true;
    while (IsDigit(At())) ++place_;
    // A point makes it a Double, also one that no digits follow.
    if (At() == '.') {
      whole = false;
      ++place_;
      while (IsDigit(At())) ++place_;
    }
    // An exponent may have a sign of its own.
    const std::size_t sign = At(1) == '+' || At(1) == '-' ? 1 : 0;
    if ((At() == 'e' || At() == 'E') && IsDigit(At(1 + sign))) {
      whole = false;
      place_ += 1 + sign;
      while (IsDigit(At())) ++place_;
    }
    const std::string_view text = statement_.substr(start, place_ - start);
    std::int32_t number = 0;
    // Whole numbers of more than 32 bits go on as doubles.
    if (whole && std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc()) {
      return AddLiteral(start, number);
    }
    double real = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), real).ec != std::errc() || !std::isfinite(real)) {
      RaiseSyntax(statement_, start, "Syntax error in number: it is out of the range of numbers");
    }
    AddLiteral(start, real);
  }

  /// True for &H1F and &O17 where an operand may stand: behind an operand the sign joins texts.
  [[nodiscard]] bool BeginsRadixNumber() const {
    if (!tokens_.empty() && (tokens_.back().kind != TokenKind::Symbol || tokens_.back().IsSymbol(")"))) return false;
    return RadixDigits() > 0;
  }

  [[nodiscard]] int Radix() const {
    const char letter = UpperAscii(At(1));
    return letter == 'H' ? 16 : letter == 'O' ? 8 : 0;
  }

  /// The number of digits behind &H or &O; 0 when it is neither.
  [[nodiscard]] std::size_t RadixDigits() const {
    if (Radix() == 0) return 0;
    std::size_t count = 0;
    const auto isDigit = [this](char character) {
      return Radix() == 8 ? character >= '0' && character <= '7'
                          : IsDigit(character) || (UpperAscii(character) >= 'A' && UpperAscii(character) <= 'F');
    };
    while (isDigit(At(2 + count))) ++count;
    return count;
  }

  void ReadRadixNumber() {
    const std::size_t start = place_;
    const std::string_view digits = statement_.substr(place_ + 2, RadixDigits());
    std::uint32_t number = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), number, Radix()).ec != std::errc()) {
      RaiseSyntax(statement_, start, "Syntax error in number: it has more than 32 bits");
    }
    place_ += 2 + digits.size();
    // All 32 bits are taken: &HFFFFFFFF is -1.
    AddLiteral(start, static_cast<std::int32_t>(number));
  }

  /// Pairs are tried first, as each begins with a single one. The pair != is known only to be refused with advice.
  void ReadSymbol() {
    constexpr std::string_view kPairs[] = {"<=", ">=", "<>", "!="};
    constexpr std::string_view kSingles = "(),;.!+-*/\\^&=<>";
    const std::string_view pair = statement_.substr(place_, 2);
    for (const std::string_view known : kPairs) {
      if (pair != known) continue;
      if (known == "!=") RaiseSyntax(statement_, place_, "Syntax error: '!=' is no operator, unequal is written '<>'");
      place_ += 2;
      return Add(TokenKind::Symbol, place_ - 2, std::string(pair));
    }
    if (kSingles.find(At()) == std::string_view::npos || At() == '\0') {
      RaiseSyntax(statement_, place_,
                  At() > ' ' ? std::string("Syntax error: the character '") + At() + "' has no meaning here"
                             : "Syntax error: a control character has no meaning here");
    }
    ++place_;
    Add(TokenKind::Symbol, place_ - 1, std::string(pair.substr(0, 1)));
  }

  /// The place stands behind the token by now, so its length follows.
  void Add(TokenKind kind, std::size_t start, std::string text) {
    tokens_.push_back({kind, start, place_ - start, std::move(text), {}});
  }

  void AddLiteral(std::size_t start, Value value) {
    Add(TokenKind::Literal, start, std::string(statement_.substr(start, place_ - start)));
    tokens_.back().value = std::move(value);
  }

  std::string_view statement_;
  std::size_t place_ = 0;
  std::vector<Token> tokens_;
};

// Enough to find the place by, and little enough for one line of a message.
constexpr std::size_t kCharactersAround = 24;

/// The statement's characters around a place, on one line, with marks where some are left out.
/// Blanks take the place of ends of lines, so that a message stays on one.
std::string TextAround(std::u32string_view before, std::u32string_view after) {
  const std::size_t beforeCount = std::min(before.size(), kCharactersAround);
  const std::size_t afterCount = std::min(after.size(), kCharactersAround);
  std::u32string around(before.substr(before.size() - beforeCount));
  around += after.substr(0, afterCount);
  std::replace_if(
      around.begin(), around.end(), [](char32_t character) { return character < U' '; }, U' ');
  return (beforeCount < before.size() ? "..." : "") + FromCodePoints(around) + (afterCount < after.size() ? "..." : "");
}

}  // namespace

// Compared for every keyword that a rule tries, so the length is looked at first.
bool Token::IsWord(std::string_view keyword) const {
  if (kind != TokenKind::Name || text.size() != keyword.size()) return false;
  for (std::size_t i = 0; i < keyword.size(); ++i) {
    if (UpperAscii(text[i]) != UpperAscii(keyword[i])) return false;
  }
  return true;
}

std::vector<Token> Tokenize(std::string_view statement) {
  return Lexer(statement).Run();
}

// People count characters and the text is bytes: what stands before the place is decoded to be counted.
void RaiseSyntax(std::string_view statement, std::size_t position, const std::string& problem) {
  const std::size_t place = std::min(position, statement.size());
  const std::u32string before = ToCodePoints(statement.substr(0, place));
  const std::u32string after = ToCodePoints(statement.substr(place));
  throw Error(
      ErrorNumber::ProviderSyntax, kErrorSource,
      problem + " (character " + std::to_string(before.size() + 1) + " of \"" + TextAround(before, after) + "\").");
}

}  // namespace tavi::access::sql
