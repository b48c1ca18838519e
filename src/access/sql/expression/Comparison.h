#pragma once

#include "platform/values/Value.h"

namespace tavi::access::sql {

/// Compares two values that are not null as the operators = < > do: negative, 0, positive.
int CompareValues(const Value& left, const Value& right);
/// Orders values for ORDER BY: nulls first, then as CompareValues.
int OrderValues(const Value& left, const Value& right);

}  // namespace tavi::access::sql
