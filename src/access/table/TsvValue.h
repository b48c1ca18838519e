#pragma once

#include <string>

#include "platform/values/Value.h"

namespace tavi::access {

/// A value as one field of a tab-separated dump, in a form that other readers of Access files give too, so that dumps
/// can be compared line by line:
///
///   null            \N
///   Boolean         true, false
///   whole numbers   plain decimal
///   Currency, Numeric   plain decimal without exponent and trailing zeros
///   Single, Double  the fewest digits that read back to the same value; plain for 1e-5 <= |x| < 1e16, else d.ddde-x;
///                   nan, inf, -inf; both zeros are 0
///   Date            yyyy-MM-ddTHH:mm:ss, the second rounded
///   text            \\ \t \n \r \0 for these characters, \uxxxx for a surrogate without its partner
///   bytes           lower-case hexadecimal; more than 256 bytes as sha256: and their digest
///   GUID            upper case, in braces
[[nodiscard]] std::string TsvText(const Value& value);

}  // namespace tavi::access
