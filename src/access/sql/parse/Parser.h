#pragma once

#include <string_view>

#include "access/sql/parse/Function.h"
#include "access/sql/parse/Limits.h"
#include "access/sql/parse/Statement.h"

namespace tavi::access::sql {

/// Understands one SQL statement (a semicolon may end it). Raises ProviderSyntax that says what was found, what was
/// expected, and points at the place; unknown functions and wrong counts of arguments are found here too. Nesting is
/// bounded by kMaximumDepth, the text by kMaximumStatementLength. The tree refers to the functions that were found.
Statement Parse(std::string_view text, FunctionFinder findFunction);

/// Understands one expression, as column defaults are written ("0", "'EBU'", "=No", "Date()").
ExpressionPointer ParseExpression(std::string_view text, FunctionFinder findFunction);

}  // namespace tavi::access::sql
