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

// INSERT, UPDATE and DELETE. What stands in brackets may be left out, "..." may be repeated:
//
//   INSERT INTO table [(name, ...)] VALUES (expression, ...) | select
//   UPDATE sources SET column = expression, ... [WHERE expression]
//   DELETE [DISTINCTROW] [* | table.*] FROM sources [WHERE expression]
//
// Sources are those of SELECT, since Access changes rows of joins too.

namespace tavi::access::sql {
namespace {

void ReadValues(TokenStream& stream, Insert& insert) {
  const std::size_t position = stream.Peek().position;
  stream.ExpectSymbol("(");
  do insert.values.push_back(ReadExpression(stream));
  while (stream.TakeSymbol(","));
  stream.ExpectSymbol(")");
  // Without names the table says how many there must be, which is found out when the statement is planned.
  if (!insert.columns.empty() && insert.columns.size() != insert.values.size()) {
    stream.Fail(position, "Number of query values and destination fields are not the same: " +
                              std::to_string(insert.values.size()) + " values, " +
                              std::to_string(insert.columns.size()) + " fields");
  }
}

ExpressionPointer ReadWhere(TokenStream& stream) {
  if (!stream.TakeWord("WHERE")) return nullptr;
  stream.EnterPart("WHERE clause");
  return ReadExpression(stream);
}

/// The table of DELETE T.* FROM; empty for DELETE FROM and DELETE * FROM.
/// DELETE T FROM means the same.
std::string ReadDeletedTable(TokenStream& stream) {
  if (stream.TakeSymbol("*") || stream.Peek().IsWord("FROM")) return {};
  std::string table = stream.ExpectName("FROM or a table name");
  if (stream.TakeSymbol(".") || stream.TakeSymbol("!")) stream.ExpectSymbol("*");
  return table;
}

}  // namespace

Insert ReadInsert(TokenStream& stream) {
  Insert insert;
  stream.EnterPart("INSERT INTO statement");
  stream.ExpectWord("INTO");
  insert.position = stream.Peek().position;
  insert.table = stream.ExpectName("a table name");
  // Names of columns, or none: what follows tells values from a select.
  if (stream.TakeSymbol("(")) {
    do insert.columns.push_back(stream.ExpectAnyName("a column name"));
    while (stream.TakeSymbol(","));
    stream.ExpectSymbol(")");
  }
  if (stream.TakeWord("VALUES")) {
    ReadValues(stream, insert);
  } else if (stream.Peek().IsWord("SELECT")) {
    insert.select = ReadSelect(stream);
  } else {
    stream.FailExpecting("VALUES or SELECT");
  }
  return insert;
}

Update ReadUpdate(TokenStream& stream) {
  Update update;
  stream.EnterPart("UPDATE statement");
  update.target = ReadSources(stream);
  stream.ExpectWord("SET");
  do {
    Assignment assignment;
    // The column may be named with its table, which a join of several needs.
    assignment.column = ReadColumn(stream);
    stream.ExpectSymbol("=");
    assignment.value = ReadExpression(stream);
    update.assignments.push_back(std::move(assignment));
  } while (stream.TakeSymbol(","));
  update.where = ReadWhere(stream);
  return update;
}

Delete ReadDelete(TokenStream& stream) {
  Delete statement;
  stream.EnterPart("DELETE statement");
  stream.TakeWord("DISTINCTROW");
  statement.table = ReadDeletedTable(stream);
  stream.ExpectWord("FROM");
  stream.EnterPart("FROM clause");
  statement.from = ReadSources(stream);
  statement.where = ReadWhere(stream);
  return statement;
}

}  // namespace tavi::access::sql
