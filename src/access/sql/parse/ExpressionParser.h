#pragma once

#include "access/sql/parse/Statement.h"
#include "access/sql/parse/TokenStream.h"

/// The grammar's rules for expressions. Operators, from the loosest to the tightest: Imp, Eqv, Xor, Or, And, Not,
/// comparisons (= <> < <= > >= Like In Between Is), &, + -, Mod, \, * /, signs, ^. Operators of one kind group from the
/// left; chains of And and Or, where grouping does not matter, are made into trees of little depth.
namespace tavi::access::sql {

/// Reads an expression.
ExpressionPointer ReadExpression(TokenStream& stream);
/// Reads a column name with or without its table's: Name, T.Name, T!Name.
ExpressionPointer ReadColumn(TokenStream& stream);
/// A new node of the tree.
ExpressionPointer MakeExpression(ExpressionKind kind, std::size_t position);

}  // namespace tavi::access::sql
