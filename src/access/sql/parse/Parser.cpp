// The first word of a statement says which rule reads it, from behind that word on. Whatever stands between the end of
// that rule and the end of the text, but for one semicolon, is an error.
#include "access/sql/parse/Parser.h"

#include "access/sql/parse/TokenStream.h"

namespace tavi::access::sql {
namespace {

/// The words behind it change nothing.
TransactionControl ReadTransactionControl(TokenStream& stream, TransactionControl::Action action) {
  const bool isNamed = stream.TakeWord("TRANSACTION");
  if (!isNamed && action != TransactionControl::Action::Begin) stream.TakeWord("WORK");
  return {action};
}

/// SELECT alone is left for its rule, which sub-selects come to as well.
Statement ParseStatement(TokenStream& stream) {
  if (stream.Peek().IsWord("SELECT")) return std::move(*ReadSelect(stream));
  if (stream.TakeWord("INSERT")) return ReadInsert(stream);
  if (stream.TakeWord("UPDATE")) return ReadUpdate(stream);
  if (stream.TakeWord("DELETE")) return ReadDelete(stream);
  if (stream.TakeWord("CREATE")) return ReadCreate(stream);
  if (stream.TakeWord("ALTER")) return ReadAlter(stream);
  if (stream.TakeWord("DROP")) return ReadDrop(stream);
  if (stream.TakeWord("BEGIN")) return ReadTransactionControl(stream, TransactionControl::Action::Begin);
  if (stream.TakeWord("COMMIT")) return ReadTransactionControl(stream, TransactionControl::Action::Commit);
  if (stream.TakeWord("ROLLBACK")) return ReadTransactionControl(stream, TransactionControl::Action::Rollback);
  stream.Fail(stream.Peek().position,
              "Invalid SQL statement: it begins with none of SELECT, INSERT, UPDATE, DELETE, CREATE, ALTER, DROP, "
              "BEGIN, COMMIT and ROLLBACK");
}

}  // namespace

Statement Parse(std::string_view text, FunctionFinder findFunction) {
  TokenStream stream(text, findFunction);
  Statement statement = ParseStatement(stream);
  stream.TakeSymbol(";");
  // One text is one statement: a second one behind the semicolon would go unseen.
  if (stream.Peek().kind != TokenKind::End) stream.FailExpecting("the end of the statement");
  return statement;
}

ExpressionPointer ParseExpression(std::string_view text, FunctionFinder findFunction) {
  TokenStream stream(text, findFunction);
  stream.EnterPart("expression");
  // Defaults may be stored with the sign before them.
  stream.TakeSymbol("=");
  ExpressionPointer expression = ReadExpression(stream);
  if (stream.Peek().kind != TokenKind::End) stream.FailExpecting("the end of the expression");
  return expression;
}

}  // namespace tavi::access::sql
