#pragma once

#include <memory>
#include <string_view>

#include "access/sql/parse/Expression.h"
#include "access/sql/parse/Statement.h"
#include "access/sql/parse/TokenStream.h"

namespace tavi::access::sql {

/// Understands one SQL statement (a semicolon may end it). Raises ProviderSyntax that says what was found, what was
/// expected, and points at the place; unknown functions and wrong counts of arguments are found here too. Nesting is
/// bounded by kMaximumDepth, the text by kMaximumStatementLength. The tree refers to the functions that were found.
Statement Parse(std::string_view text, FunctionFinder findFunction);

/// Understands one expression, as column defaults are written ("0", "'EBU'", "=No", "Date()").
ExpressionPointer ParseExpression(std::string_view text, FunctionFinder findFunction);

// Below: the rules of the grammar, which the files of the parser call in each other. Each reads its part of the
// statement from the stream and leaves the stream behind it.

/// Reads an expression. Operators bind as Tightness says; those of one kind group from the left. Chains of And and Or,
/// where grouping does not matter, are made into trees of little depth.
ExpressionPointer ReadExpression(TokenStream& stream);
/// Reads a column name with or without its table's: Name, T.Name, T!Name.
ExpressionPointer ReadColumn(TokenStream& stream);

/// Reads a SELECT with its unions, from the word SELECT on.
std::shared_ptr<Select> ReadSelect(TokenStream& stream);
/// Reads the tables behind FROM or UPDATE: a list of tables, joins and sub-selects.
std::unique_ptr<Source> ReadSources(TokenStream& stream);

/// The statements that change rows, from behind their first word on.
Insert ReadInsert(TokenStream& stream);
Update ReadUpdate(TokenStream& stream);
Delete ReadDelete(TokenStream& stream);

/// The statements that change definitions, from behind their first word on.
Statement ReadCreate(TokenStream& stream);
Statement ReadAlter(TokenStream& stream);
Statement ReadDrop(TokenStream& stream);
/// Reads a type as CREATE TABLE and ALTER TABLE name it into `column`: the word, and behind it, where the type has
/// them, a length "(n)" or "(precision, scale)". Raises ProviderSyntax for unknown words and sizes out of range.
void ReadColumnType(TokenStream& stream, ColumnDesign& column);

}  // namespace tavi::access::sql
