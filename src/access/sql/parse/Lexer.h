#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/values/Value.h"

namespace tavi::access::sql {

/// Characters of a statement (Access's own limit).
inline constexpr std::size_t kMaximumStatementLength = 64000;

enum class TokenKind {
  Name,        ///< a plain name or a keyword: letters, digits, _ and $
  QuotedName,  ///< [in brackets] or `in back quotes`, without them: never a keyword
  Literal,     ///< a text, number or date; `value`
  Symbol,      ///< punctuation; `text`
  End          ///< behind the last token
};

/// A piece of a statement's text.
struct Token {
  TokenKind kind = TokenKind::End;
  std::size_t position = 0;  ///< byte offset in the text
  std::size_t length = 0;    ///< bytes in the text, quotes included
  std::string text;          ///< the name, the symbol, or the piece as written
  Value value;

  /// True for this keyword, written in any case and without brackets.
  [[nodiscard]] bool IsWord(std::string_view keyword) const;
  [[nodiscard]] bool IsSymbol(std::string_view symbol) const { return kind == TokenKind::Symbol && text == symbol; }
};

/// Cuts a statement into tokens; the last one is always End. Texts stand in '...' or "..." with doubled quotes inside,
/// dates in #...# (month/day/year, ISO, with times), numbers as 12, 12.5, .5, 1e-3, &H1F, &O17: whole numbers that fit
/// are Long, others Double. Access has no comments. Raises ProviderSyntax for text too long, an open quote, a date that
/// is none, a number out of range, and characters that no token begins with.
std::vector<Token> Tokenize(std::string_view statement);

/// Raises ProviderSyntax. `problem` is the sentence without its full stop; the place (counted in characters from 1,
/// with the text around it) is added. `position` is a byte offset in the statement.
[[noreturn]] void RaiseSyntax(std::string_view statement, std::size_t position, const std::string& problem);

}  // namespace tavi::access::sql
