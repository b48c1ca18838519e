// INSERT, UPDATE and DELETE. What stands in brackets may be left out, "..." may be repeated:
//
//   INSERT INTO table [(name, ...)] VALUES (expression, ...) | select
//   UPDATE sources SET column = expression, ... [WHERE expression]
//   DELETE [DISTINCTROW] [* | table.*] FROM sources [WHERE expression]
//
// Sources are those of SELECT, since Access changes rows of joins too.
#include "access/sql/parse/Parser.h"

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
