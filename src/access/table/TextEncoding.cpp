#include "access/table/TextEncoding.h"

#include <algorithm>

#include "access/file/Format.h"
#include "platform/values/Text.h"

namespace tavi::access {
namespace {

bool IsCompressed(std::span<const std::uint8_t> bytes) {
  return bytes.size() >= 2 && bytes[0] == format::text::kCompressedMark[0] &&
         bytes[1] == format::text::kCompressedMark[1];
}

std::u16string PlainUnits(std::span<const std::uint8_t> bytes) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    units.push_back(static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8U));
  }
  return units;
}

std::u16string CompressedUnits(std::span<const std::uint8_t> bytes) {
  std::u16string units;
  bool compressed = true;
  while (!bytes.empty()) {
    const auto end = std::find(bytes.begin(), bytes.end(), format::text::kModeSwitch);
    const auto length = static_cast<std::size_t>(end - bytes.begin());
    const auto segment = bytes.first(length);
    if (compressed) {
      units.append(segment.begin(), segment.end());
    } else {
      units += PlainUnits(segment);
    }
    bytes = bytes.subspan(std::min(length + 1, bytes.size()));
    compressed = !compressed;
  }
  return units;
}

bool IsCompressible(const std::u16string& units) {
  return units.size() >= format::text::kMinimumCompressedLength &&
         std::all_of(units.begin(), units.end(), [](char16_t unit) { return unit >= 1 && unit <= 0xFF; });
}

std::vector<std::uint8_t> Plain(const std::u16string& units) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(units.size() * 2);
  for (const char16_t unit : units) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFFU));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8U));
  }
  return bytes;
}

}  // namespace

std::string DecodeText(std::span<const std::uint8_t> bytes) {
  return FromUtf16(IsCompressed(bytes) ? CompressedUnits(bytes.subspan(2)) : PlainUnits(bytes));
}

std::vector<std::uint8_t> EncodeText(std::string_view text, bool mayCompress) {
  const std::u16string units = ToUtf16(text);
  if (!mayCompress || !IsCompressible(units)) return Plain(units);
  std::vector<std::uint8_t> bytes(format::text::kCompressedMark.begin(), format::text::kCompressedMark.end());
  for (const char16_t unit : units) bytes.push_back(static_cast<std::uint8_t>(unit));
  return bytes;
}

std::vector<std::uint8_t> EncodePlainText(std::string_view text) {
  return Plain(ToUtf16(text));
}

std::size_t StoredLength(std::string_view text) {
  return ToUtf16(text).size();
}

}  // namespace tavi::access
