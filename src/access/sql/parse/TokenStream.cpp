// The tokens with a place among them. The rules of the parser only ask what comes next, take it, or expect it; they
// never go back, so that a statement is read in one pass, with three tokens ahead at the most.
//
// A message is made of where the reader is (the part that was entered last), of what was found and of what was
// expected. For "Select X From T Where A B" it is:
//
//   Syntax error (missing operator) in query expression 'A B' of the WHERE clause: 'B' was found where an operator or
//   the end of the statement was expected (character 25 of "Select X From T Where A B").
#include "access/sql/parse/TokenStream.h"

#include <algorithm>

#include "access/sql/parse/Lexer.h"

namespace tavi::access::sql {
namespace {

// Words that begin, join or end parts of a statement. All others may be names: TEXT, DATE, PRIMARY, TOP, COUNT ...
constexpr std::string_view kReservedWords[] = {
    "ALIKE",       "ALL",   "AND",    "ANY",  "AS",   "ASC",   "BETWEEN", "BY",    "DESC", "DISTINCT",
    "DISTINCTROW", "EQV",   "EXISTS", "FROM", "FULL", "GROUP", "HAVING",  "IMP",   "IN",   "INNER",
    "INTO",        "IS",    "JOIN",   "LEFT", "LIKE", "MOD",   "NOT",     "NULL",  "ON",   "OR",
    "ORDER",       "RIGHT", "SELECT", "SET",  "SOME", "UNION", "VALUES",  "WHERE", "WITH", "XOR"};

/// What was found, for messages: as written, unless it is longer than helps.
std::string Shown(const Token& token) {
  constexpr std::size_t kLongest = 40;
  if (token.kind == TokenKind::End) return "the statement ends here";
  if (token.text.size() > kLongest) return "a long text was found";
  return "'" + token.text + "' was found";
}

}  // namespace

bool IsReserved(const Token& token) {
  return token.kind == TokenKind::Name && std::any_of(std::begin(kReservedWords), std::end(kReservedWords),
                                                      [&](std::string_view word) { return token.IsWord(word); });
}

// The whole text is cut before the first rule reads, so that an open quote is the error and not what it swallows.
TokenStream::TokenStream(std::string_view statement, FunctionFinder findFunction)
    : statement_(statement), findFunction_(findFunction), tokens_(Tokenize(statement)) {}

// Behind the end there is the end, however far one looks.
const Token& TokenStream::Peek(std::size_t ahead) const {
  return tokens_[std::min(place_ + ahead, tokens_.size() - 1)];
}

// The reference stays good: tokens are made once and never change.
const Token& TokenStream::Take() {
  const Token& token = Peek();
  if (place_ + 1 < tokens_.size()) ++place_;
  return token;
}

bool TokenStream::TakeWord(std::string_view keyword) {
  if (!Peek().IsWord(keyword)) return false;
  Take();
  return true;
}

bool TokenStream::TakeSymbol(std::string_view symbol) {
  if (!Peek().IsSymbol(symbol)) return false;
  Take();
  return true;
}

void TokenStream::ExpectWord(std::string_view keyword) {
  if (!TakeWord(keyword)) FailExpecting(keyword);
}

void TokenStream::ExpectSymbol(std::string_view symbol) {
  if (!TakeSymbol(symbol)) FailExpecting("'" + std::string(symbol) + "'");
}

// A word in brackets or back quotes is a name even if it is reserved.
bool TokenStream::NextIsName() const {
  return Peek().kind == TokenKind::QuotedName || (Peek().kind == TokenKind::Name && !IsReserved(Peek()));
}

std::string TokenStream::ExpectName(std::string_view what) {
  if (!NextIsName()) FailExpecting(what);
  return Take().text;
}

std::string TokenStream::ExpectAnyName(std::string_view what) {
  if (Peek().kind != TokenKind::QuotedName && Peek().kind != TokenKind::Name) FailExpecting(what);
  return Take().text;
}

// A range of one number is told as that number.
std::int32_t TokenStream::ExpectNumber(std::string_view what, std::int32_t lowest, std::int32_t highest) {
  const auto* number = std::get_if<std::int32_t>(&Peek().value);
  if (number == nullptr || *number < lowest || *number > highest) {
    const std::string range = lowest == highest ? "" : " to " + std::to_string(highest);
    FailExpecting(std::string(what) + " (" + std::to_string(lowest) + range + ")");
  }
  Take();
  return *number;
}

// Only the expression that ended last matters: the error is about the token right behind it.
void TokenStream::EndExpression(std::size_t start) {
  expressionStart_ = start;
  expressionEnd_ = place_;
}

// As it was written, with blanks and quotes: defaults are stored in this form.
std::string TokenStream::TextSince(std::size_t place) const {
  if (place >= place_) return {};
  const Token& last = tokens_[place_ - 1];
  const std::size_t start = tokens_[place].position;
  return std::string(statement_.substr(start, last.position + last.length - start));
}

// Where an expression has just ended and a value or a name follows, an operator is missing, which Access says with the
// expression's text; longer ones than fit a message are left out.
void TokenStream::FailExpecting(std::string_view expected) const {
  const Token& token = Peek();
  const bool lacksOperator =
      expressionEnd_ == place_ && place_ > 0 && token.kind != TokenKind::End && token.kind != TokenKind::Symbol;
  std::string problem = "Syntax error in " + std::string(part_);
  if (lacksOperator) {
    const std::size_t start = tokens_[expressionStart_].position;
    constexpr std::size_t kLongest = 200;
    const std::size_t length = token.position + token.length - start;
    problem = "Syntax error (missing operator) in query expression";
    if (length <= kLongest) problem += " '" + std::string(statement_.substr(start, length)) + "'";
    problem += " of the " + std::string(part_);
  }
  Fail(token.position, problem + ": " + Shown(token) + " where " + (lacksOperator ? "an operator or " : "") +
                           std::string(expected) + " was expected");
}

void TokenStream::Fail(std::size_t position, const std::string& problem) const {
  RaiseSyntax(statement_, position, problem);
}

void TokenStream::FailTooDeep() const {
  Fail(Peek().position, "The statement is too complex: it is nested more than " + std::to_string(kMaximumDepth) +
                            " levels deep, split it");
}

// Refused before anything is counted, as the destructor does not run then.
TokenStream::Level::Level(TokenStream& stream) : stream_(stream) {
  if (stream_.depth_ >= kMaximumDepth) stream_.FailTooDeep();
  ++stream_.depth_;
}

// Every node asks this as it is made, so that the sum is never found out by walking the tree.
std::uint16_t TokenStream::Above(std::uint16_t depth, std::uint16_t other) const {
  const std::uint16_t deeper = std::max(depth, other);
  if (deeper >= kMaximumDepth) FailTooDeep();
  return static_cast<std::uint16_t>(deeper + 1);
}

}  // namespace tavi::access::sql
