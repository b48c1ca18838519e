#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/values/Value.h"

/// Conversions between values as the automation language makes them. All raise TypeMismatch for a value that does not
/// convert (null included) and Overflow for a number out of range; source "TaviMembership". Independent of the locale.
namespace tavi {

/// True for any number or date that is not 0; "True"/"False" in any case and numbers as text convert.
bool ToBoolean(const Value& value);
/// Rounded to the nearest whole number, ties to even. True is -1, a date its day count.
std::int16_t ToInt16(const Value& value);
/// As ToInt16, 32 bits.
std::int32_t ToInt32(const Value& value);
/// Text is read with a point as the decimal separator.
double ToDouble(const Value& value);
/// A number is a day count; text is read in ISO form, as "d mmm yyyy" or as d/m/yyyy.
Date ToDate(const Value& value);
/// Numbers in plain decimal (NumberText), dates in ISO form, booleans "True" and "False", bytes as hexadecimal digits.
/// Null raises TypeMismatch.
std::string ToText(const Value& value);

/// The general decimal text of a double: as many significant digits as it needs, at most 15, no exponent for ordinary
/// values (1e-5 <= |x| < 1e15), a point as the separator, no trailing zeros ("0.5", "12", "-1.25", "1E+15").
std::string NumberText(double number);
/// The same with as many digits more, at most 17, as it takes to be read back as the same double.
std::string ExactNumberText(double number);
/// Reads a number in plain or exponent notation, blanks around it allowed; nothing when the text is none or not finite.
std::optional<double> ParseNumber(std::string_view text);

/// Rounds to `decimals` places, a value exactly half-way to the even last digit.
double RoundHalfEven(double number, int decimals);
/// The same for what people read: the number is taken as its text of 15 significant digits says, so that 33.995 is
/// half-way to 34 although the nearest double lies a little below.
double RoundDecimalHalfEven(double number, int decimals);

/// The decimal text of an amount or decimal number, exact, without trailing zeros after the point ("-1.1", "14", "0").
std::string CurrencyText(Currency amount);
std::string DecimalText(const Decimal& number);
/// "{0FC49B7B-E656-4228-AEDC-DF8BDF4C4A64}"; upper case.
std::string GuidText(const Guid& guid);

}  // namespace tavi
