#include "access/index/KeyBytes.h"

#include <algorithm>
#include <bit>

#include "access/file/Format.h"
#include "access/index/Collation.h"

namespace tavi::access {

namespace {

namespace key = format::key;

constexpr std::uint8_t kPositiveDecimal = 0xFF;
constexpr std::uint8_t kNegativeDecimal = 0x00;

/// Makes the bits of a float sort like unsigned numbers.
template <typename Unsigned>
Unsigned SortableFloat(Unsigned bits) {
  constexpr Unsigned kSign = Unsigned{1} << (sizeof(Unsigned) * 8U - 1U);
  return (bits & kSign) == 0 ? bits ^ kSign : ~bits;
}

}  // namespace

void KeyBytes::AddFlag(bool ascending) {
  bytes_.push_back(ascending ? key::kValueAscending : key::kValueDescending);
}

void KeyBytes::AddBigEndian(std::uint64_t value, std::size_t size) {
  for (std::size_t i = size; i > 0; --i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8U * (i - 1))));
}

void KeyBytes::InvertFrom(std::size_t start) {
  for (std::size_t i = start; i < bytes_.size(); ++i) bytes_[i] = static_cast<std::uint8_t>(~bytes_[i]);
}

void KeyBytes::AddNull(bool ascending) {
  bytes_.push_back(ascending ? key::kNullAscending : key::kNullDescending);
}

void KeyBytes::AddBoolean(bool value, bool ascending) {
  AddFlag(ascending);
  bytes_.push_back(value ? key::kTrue : key::kFalse);
  if (!ascending) InvertFrom(bytes_.size() - 1);
}

void KeyBytes::AddByte(std::uint8_t value, bool ascending) {
  AddFlag(ascending);
  bytes_.push_back(value);
  if (!ascending) InvertFrom(bytes_.size() - 1);
}

void KeyBytes::AddInteger(std::int64_t value, std::size_t size, bool ascending) {
  AddFlag(ascending);
  const std::size_t start = bytes_.size();
  AddBigEndian(static_cast<std::uint64_t>(value) ^ (std::uint64_t{1} << (size * 8U - 1U)), size);
  if (!ascending) InvertFrom(start);
}

void KeyBytes::AddSingle(float value, bool ascending) {
  AddFlag(ascending);
  const std::size_t start = bytes_.size();
  AddBigEndian(SortableFloat(std::bit_cast<std::uint32_t>(value)), sizeof(value));
  if (!ascending) InvertFrom(start);
}

void KeyBytes::AddDouble(double value, bool ascending) {
  AddFlag(ascending);
  const std::size_t start = bytes_.size();
  AddBigEndian(SortableFloat(std::bit_cast<std::uint64_t>(value)), sizeof(value));
  if (!ascending) InvertFrom(start);
}

void KeyBytes::AddDecimal(const Decimal& value, bool ascending) {
  AddFlag(ascending);
  bytes_.push_back(value.negative ? kNegativeDecimal : kPositiveDecimal);
  const std::size_t start = bytes_.size();
  AddBigEndian(value.high, sizeof(value.high));
  AddBigEndian(value.low, sizeof(value.low));
  if (value.negative == ascending) InvertFrom(start);
}

void KeyBytes::AddBinary(std::span<const std::uint8_t> value, bool ascending) {
  AddFlag(ascending);
  while (!value.empty()) {
    const std::size_t start = bytes_.size();
    const std::size_t taken = std::min(value.size(), key::kGroupSize);
    const bool isLast = taken == value.size();
    bytes_.insert(bytes_.end(), value.begin(), value.begin() + static_cast<std::ptrdiff_t>(taken));
    bytes_.insert(bytes_.end(), key::kGroupSize - taken, 0);
    if (isLast) bytes_.push_back(static_cast<std::uint8_t>(taken));
    if (!ascending) InvertFrom(start);
    if (!isLast) bytes_.push_back(key::kGroupContinues);
    value = value.subspan(taken);
  }
}

void KeyBytes::AddText(std::string_view value, bool ascending) {
  AddFlag(ascending);
  const std::size_t start = bytes_.size();
  AppendCollationKey(value, bytes_);
  if (ascending) return;
  InvertFrom(start);
  bytes_.push_back(key::kTextEnd);
}

}  // namespace tavi::access
