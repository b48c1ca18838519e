#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "platform/values/Date.h"

namespace tavi {

/// An amount with four decimals, as Access holds it.
struct Currency {
  std::int64_t tenThousandths = 0;
  auto operator<=>(const Currency&) const = default;
};

/// A decimal number of up to 28 digits: magnitude / 10^scale, with a sign. The magnitude is 128 bits, `high` first.
struct Decimal {
  bool negative = false;
  std::uint64_t high = 0;
  std::uint64_t low = 0;
  std::uint8_t scale = 0;
  bool operator==(const Decimal&) const = default;
};

/// A globally unique identifier; the bytes in printed order.
struct Guid {
  std::array<std::uint8_t, 16> bytes{};
  auto operator<=>(const Guid&) const = default;
};

using Bytes = std::vector<std::uint8_t>;

/// The absence of a value.
using Null = std::monostate;

/// One field value. Text is UTF-8; a UTF-16 surrogate without its partner (which real files can hold) is kept as the
/// three bytes that the UTF-8 scheme gives for it. `uint8_t` is Access's Byte, `int16_t` its Integer, `int32_t` its
/// Long.
using Value = std::variant<Null, bool, std::uint8_t, std::int16_t, std::int32_t, float, double, Currency, Decimal, Date,
                           std::string, Bytes, Guid>;

/// True when the value is null.
inline bool IsNull(const Value& value) {
  return std::holds_alternative<Null>(value);
}

}  // namespace tavi
