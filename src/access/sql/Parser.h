#pragma once

#include <string_view>

#include "access/sql/Statement.h"

namespace tavi::access::sql {

/// Understands one SQL statement (a semicolon may end it). Raises ProviderSyntax that says what was found, what was
/// expected, and points at the place. Nesting is bounded (kMaximumDepth); text is bounded (64,000 characters).
Statement Parse(std::string_view text);

/// Understands one expression, as column defaults are written ("0", "'EBU'", "=No", "Date()").
ExpressionPointer ParseExpression(std::string_view text);

}  // namespace tavi::access::sql
