#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "platform/values/Value.h"

namespace tavi::access {

/// Writes the bytes of index keys, one column after another:
///
///   null        00                        descending FF
///   otherwise   7F value                  descending 80 value, its bits inverted (with the exceptions below)
///
///   whole numbers  big-endian, top bit flipped (Byte: as it is)
///   floats, dates  big-endian; positive: sign bit flipped, negative: all bits inverted
///   Boolean        00 True, FF False
///   binary, GUID   groups of 8 bytes, each but the last followed by 09, the last padded with 00 and followed by its
///                  length; descending the 09 bytes are not inverted
///   Numeric        FF and the 16 bytes of the magnitude, big-endian; negative: 00 and the magnitude inverted;
///                  descending only the magnitude is inverted, so that mixed signs sort wrongly, as in Access
///   text           the collation key; descending followed by an uninverted 00
///
/// Example: Long 2 and the text "a":  7F 80 00 00 02  7F 4A 01 00,  descending  80 7F FF FF FD  80 B5 FE FF 00
class KeyBytes {
 public:
  /// Appends to `bytes`, which must outlive this object.
  explicit KeyBytes(std::vector<std::uint8_t>& bytes) : bytes_(bytes) {}

  void AddNull(bool ascending);
  void AddBoolean(bool value, bool ascending);
  void AddByte(std::uint8_t value, bool ascending);
  /// A signed number of `size` bytes (2, 4 or 8).
  void AddInteger(std::int64_t value, std::size_t size, bool ascending);
  void AddSingle(float value, bool ascending);
  void AddDouble(double value, bool ascending);
  void AddDecimal(const Decimal& value, bool ascending);
  void AddBinary(std::span<const std::uint8_t> value, bool ascending);
  void AddText(std::string_view value, bool ascending);

 private:
  void AddFlag(bool ascending);
  void AddBigEndian(std::uint64_t value, std::size_t size);
  void InvertFrom(std::size_t start);

  std::vector<std::uint8_t>& bytes_;
};

}  // namespace tavi::access
