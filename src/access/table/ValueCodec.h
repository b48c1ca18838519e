#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "access/table/FormatVersion.h"
#include "access/table/TableDefinition.h"
#include "platform/values/Value.h"

namespace tavi::access {

// Stored values, between Value and the bytes of a row; long values (MEMO, OLE) lie elsewhere, see LongValues.h, and a
// Boolean is a bit of the null mask. Little-endian.
//
//   Byte u8   Integer i16   Long i32   Currency i64, ten-thousandths   Single f32   Double f64   Date f64, days
//   GUID      u32, u16, u16, then 8 bytes as printed
//   Numeric   sign 00 or 80, then value x 10^scale as four u32, the most significant first
//   Text      see TextEncoding.h; in a fixed-length column plain and padded with blanks
//   Binary    the bytes
//
// Example: Numeric of scale 3, -1110.554     80  00 00 00 00  00 00 00 00  00 00 00 00  1A F2 10 00

/// Bytes of a value in a row when the type alone decides (not Boolean, Text, Binary, long values).
[[nodiscard]] std::optional<std::size_t> SizeOfType(ColumnType type);

/// The value of stored bytes, as many as belong to it or more. Types that are not known give Bytes. Raises
/// ProviderFailure when the bytes are too few; the description names the column.
[[nodiscard]] Value DecodeValue(std::span<const std::uint8_t> stored, const ColumnDefinition& column,
                                const FormatVersion& version);

/// The bytes of a value that is not null, of its column's type (see ConvertForColumn). For a fixed-length column as
/// many bytes as it has. Raises ProviderTypeConflict for a value of another type; the description names the column.
[[nodiscard]] Bytes EncodeValue(const Value& value, const ColumnDefinition& column);

/// Reads a decimal number in plain or exponent notation exactly and rounds it to `scale` places, a value half-way to
/// the even last digit. Nothing when the text is no number or has more than `precision` digits then.
[[nodiscard]] std::optional<Decimal> ParseDecimal(std::string_view text, std::uint8_t precision, std::uint8_t scale);

/// The amount of a decimal number of scale 4; nothing when it is too large for one.
[[nodiscard]] std::optional<Currency> ToCurrency(const Decimal& number);

}  // namespace tavi::access
