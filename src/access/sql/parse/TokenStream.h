#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "access/sql/parse/Expression.h"
#include "access/sql/parse/Lexer.h"

namespace tavi::access::sql {

/// The tokens of a statement with a place among them: what the rules of the parser read from. All failures raise
/// ProviderSyntax and say which part of the statement it is, what was found and what was expected.
class TokenStream {
 public:
  /// `statement` outlives the stream. Expressions may call the functions that `findFunction` knows.
  TokenStream(std::string_view statement, FunctionFinder findFunction);

  [[nodiscard]] const Token& Peek(std::size_t ahead = 0) const;
  /// The current token; the place moves on (End stays).
  const Token& Take();
  /// Takes the keyword or symbol if it comes next.
  bool TakeWord(std::string_view keyword);
  bool TakeSymbol(std::string_view symbol);
  void ExpectWord(std::string_view keyword);
  void ExpectSymbol(std::string_view symbol);
  /// Takes a name; a word that is reserved (see IsReserved) must be quoted. `what` says whose name: "a table name".
  std::string ExpectName(std::string_view what);
  /// Takes a name where nothing else can stand, so that reserved words are names too.
  std::string ExpectAnyName(std::string_view what);
  /// Takes a whole number in a range.
  std::int32_t ExpectNumber(std::string_view what, std::int32_t lowest, std::int32_t highest);
  [[nodiscard]] bool NextIsName() const;

  /// The part of the statement that errors name: "FROM clause".
  void EnterPart(std::string_view part) { part_ = part; }
  /// Notes that an expression, begun at the token `start`, ends here: an unexpected token behind it lacks an operator.
  void EndExpression(std::size_t start);
  /// The function of a name; null when there is none.
  [[nodiscard]] const Function* FindFunction(std::string_view name) const { return findFunction_(name); }
  /// The next number of an expression in the current select (Expression::number).
  [[nodiscard]] std::size_t NextNumber() { return ++lastNumber_; }

  /// The number of the current token.
  [[nodiscard]] std::size_t Place() const { return place_; }
  /// The statement's text from one token up to the current one, without blanks at its end.
  [[nodiscard]] std::string TextSince(std::size_t place) const;

  /// Raises the error of an unexpected current token.
  [[noreturn]] void FailExpecting(std::string_view expected) const;
  /// Raises an error at a byte offset; `problem` is a sentence without its full stop.
  [[noreturn]] void Fail(std::size_t position, const std::string& problem) const;

  /// A level of nesting while it lives. Raises an error when there are too many.
  class Level {
   public:
    explicit Level(TokenStream& stream);
    ~Level() { --stream_.depth_; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

   private:
    TokenStream& stream_;
  };
  /// A select while it lives, whose expressions have numbers of their own.
  class SelectNumbers {
   public:
    explicit SelectNumbers(TokenStream& stream) : stream_(stream), outer_(std::exchange(stream.lastNumber_, 0)) {}
    ~SelectNumbers() { stream_.lastNumber_ = outer_; }
    SelectNumbers(const SelectNumbers&) = delete;
    SelectNumbers& operator=(const SelectNumbers&) = delete;

   private:
    TokenStream& stream_;
    std::size_t outer_;
  };
  /// The depth of a tree node above others of the depths given. Raises an error when it is too deep.
  [[nodiscard]] std::uint16_t Above(std::uint16_t depth, std::uint16_t other = 0) const;

 private:
  [[noreturn]] void FailTooDeep() const;

  std::string_view statement_;
  FunctionFinder findFunction_;
  std::vector<Token> tokens_;
  std::size_t place_ = 0;
  std::size_t depth_ = 0;
  std::size_t lastNumber_ = 0;
  std::string_view part_ = "statement";
  std::size_t expressionStart_ = 0;
  std::size_t expressionEnd_ = 0;  ///< 0: none has ended
};

/// True for a keyword that cannot be a name unless it is quoted, because it begins or joins parts of a statement.
bool IsReserved(const Token& token);

}  // namespace tavi::access::sql
