#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "access/sql/expression/Functions.h"
#include "access/sql/parse/Parser.h"

/// Parsing with the built-in functions, as sessions do it, and what comes of it as text.
namespace tavi::access::sql {

inline Statement Parse(std::string_view text) {
  return Parse(text, FindFunction);
}
inline ExpressionPointer ParseExpression(std::string_view text) {
  return ParseExpression(text, FindFunction);
}

/// A tree as a compact text: what is nested stands in parentheses, lists in brackets.
std::string TreeText(const Statement& statement);
std::string TreeText(const Expression& expression);
/// A value with its type where the text alone does not tell it: 5L, 5I, 5B, 0.5, 0.5S, 0.5C, 'text', #ISO date#, Null,
/// True.
std::string ValueText(const Value& value);

/// A line of a table of texts: the tree of a statement.
struct TreeCase {
  std::string_view text;
  std::string_view tree;
};

template <std::size_t kCount>
void ExpectTrees(const TreeCase (&cases)[kCount]) {
  for (const TreeCase& one : cases) EXPECT_EQ(TreeText(Parse(one.text)), one.tree) << one.text;
}

}  // namespace tavi::access::sql
