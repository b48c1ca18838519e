#pragma once

#include "access/sql/expression/Functions.h"
#include "access/sql/parse/Parser.h"

/// Parsing with the built-in functions, as sessions do it.
namespace tavi::access::sql {

inline Statement Parse(std::string_view text) {
  return Parse(text, FindFunction);
}
inline ExpressionPointer ParseExpression(std::string_view text) {
  return ParseExpression(text, FindFunction);
}

}  // namespace tavi::access::sql
