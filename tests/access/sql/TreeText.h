#pragma once

#include <string>

#include "access/sql/parse/Statement.h"

/// Compact texts of the parser's trees, for tests only: what is nested stands in parentheses, lists in brackets.
namespace tavi::access::sql {

std::string TreeText(const Statement& statement);
std::string TreeText(const Expression& expression);
/// A value with its type where the text alone does not tell it: 5L, 5I, 5B, 0.5, 0.5S, 0.5C, 'text', #ISO date#, Null,
/// True.
std::string ValueText(const Value& value);

}  // namespace tavi::access::sql
