#include "access/file/Page.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/values/Error.h"

namespace tavi::access {

namespace {

[[noreturn]] void RaisePastTheEnd(PageNumber page, std::size_t offset, std::size_t length) {
  throw Error(ErrorNumber::ProviderFailure, "TaviMembership",
              "Page " + std::to_string(page) + " of the database is damaged: " + std::to_string(length) +
                  " bytes at offset " + std::to_string(offset) + " would lie past the end of the page. Restore the " +
                  "database from a backup, or copy what is readable with 'tavi compact'.");
}

void Check(PageNumber page, std::size_t offset, std::size_t length) {
  if (offset > kPageSize || length > kPageSize - offset) RaisePastTheEnd(page, offset, length);
}

}  // namespace

std::uint8_t Page::U8(std::size_t offset) const {
  Check(number_, offset, 1);
  return bytes_[offset];
}

std::uint16_t Page::U16(std::size_t offset) const {
  Check(number_, offset, 2);
  return static_cast<std::uint16_t>(bytes_[offset] | (bytes_[offset + 1] << 8U));
}

std::uint32_t Page::U24(std::size_t offset) const {
  Check(number_, offset, 3);
  return static_cast<std::uint32_t>(bytes_[offset]) | (static_cast<std::uint32_t>(bytes_[offset + 1]) << 8U) |
         (static_cast<std::uint32_t>(bytes_[offset + 2]) << 16U);
}

std::uint32_t Page::U32(std::size_t offset) const {
  Check(number_, offset, 4);
  return static_cast<std::uint32_t>(bytes_[offset]) | (static_cast<std::uint32_t>(bytes_[offset + 1]) << 8U) |
         (static_cast<std::uint32_t>(bytes_[offset + 2]) << 16U) |
         (static_cast<std::uint32_t>(bytes_[offset + 3]) << 24U);
}

std::span<const std::uint8_t> Page::Slice(std::size_t offset, std::size_t length) const {
  Check(number_, offset, length);
  return std::span<const std::uint8_t>(bytes_).subspan(offset, length);
}

void Page::SetU8(std::size_t offset, std::uint8_t value) {
  Check(number_, offset, 1);
  bytes_[offset] = value;
}

void Page::SetU16(std::size_t offset, std::uint16_t value) {
  Check(number_, offset, 2);
  bytes_[offset] = static_cast<std::uint8_t>(value);
  bytes_[offset + 1] = static_cast<std::uint8_t>(value >> 8U);
}

void Page::SetU24(std::size_t offset, std::uint32_t value) {
  Check(number_, offset, 3);
  bytes_[offset] = static_cast<std::uint8_t>(value);
  bytes_[offset + 1] = static_cast<std::uint8_t>(value >> 8U);
  bytes_[offset + 2] = static_cast<std::uint8_t>(value >> 16U);
}

void Page::SetU32(std::size_t offset, std::uint32_t value) {
  Check(number_, offset, 4);
  bytes_[offset] = static_cast<std::uint8_t>(value);
  bytes_[offset + 1] = static_cast<std::uint8_t>(value >> 8U);
  bytes_[offset + 2] = static_cast<std::uint8_t>(value >> 16U);
  bytes_[offset + 3] = static_cast<std::uint8_t>(value >> 24U);
}

void Page::Put(std::size_t offset, std::span<const std::uint8_t> source) {
  Check(number_, offset, source.size());
  if (!source.empty()) std::memmove(bytes_.data() + offset, source.data(), source.size());
}

void Page::Fill(std::size_t offset, std::size_t length, std::uint8_t value) {
  Check(number_, offset, length);
  std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), length, value);
}

}  // namespace tavi::access
