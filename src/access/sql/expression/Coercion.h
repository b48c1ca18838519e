#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/values/Value.h"

/// How expressions turn values of one type into another. Null is never passed in: callers have answered it before.
namespace tavi::access::sql {

/// Bytes of a text that an expression makes.
inline constexpr std::size_t kMaximumTextLength = std::size_t{16} * 1024 * 1024;

/// Raises ProviderTypeConflict, "Data type mismatch in criteria expression."
[[noreturn]] void RaiseTypeConflict();
/// Raises Overflow; `reason` is a sentence without its full stop, or empty.
[[noreturn]] void RaiseOverflow(std::string_view reason = {});
/// The number. Raises Overflow when it is infinite or none.
double Finite(double number);
/// Raises InvalidArgument; `reason` likewise.
[[noreturn]] void RaiseInvalidCall(std::string_view reason);

/// The number of a value: True is -1, a date its day count, a text the number that it writes. Raises
/// ProviderTypeConflict.
double NumberOf(const Value& value);
/// Rounded to the nearest whole number, ties to even. Raises ProviderTypeConflict, Overflow.
std::int32_t LongOf(const Value& value);
/// The text of a value: truth values are "-1" and "0", numbers plain decimals, dates in ISO form.
std::string TextOf(const Value& value);
/// A number is a day count; a text is read day first (see DateText.h). Raises ProviderTypeConflict, Overflow.
Date DateOf(const Value& value);
/// The date of a day count. Raises Overflow outside the years 100 to 9999.
Date DateOfNumber(double days);

/// True, False, or neither (Null).
enum class Truth { False, True, Unknown };
/// Null is Unknown; a number is true unless it is 0. Raises ProviderTypeConflict.
Truth TruthOf(const Value& value);
/// A truth value, or Null.
Value ValueOf(Truth truth);

}  // namespace tavi::access::sql
