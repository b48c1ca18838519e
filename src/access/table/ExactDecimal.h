#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/values/Value.h"

namespace tavi::access {

/// Reads a decimal number in plain or exponent notation exactly and rounds it to `scale` places, a value half-way to
/// the even last digit. Nothing when the text is no number or has more than `precision` digits then.
[[nodiscard]] std::optional<Decimal> ParseDecimal(std::string_view text, std::uint8_t precision, std::uint8_t scale);

/// The amount of a decimal number of scale 4; nothing when it is too large for one.
[[nodiscard]] std::optional<Currency> ToCurrency(const Decimal& number);

}  // namespace tavi::access
