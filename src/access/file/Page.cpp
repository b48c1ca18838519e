#include "access/file/Page.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "access/file/EngineError.h"

namespace tavi::access {

// Apart from the check, which is in every reader: raising is rare, and its text would make the readers long.
void Page::RaisePastTheEnd(std::size_t offset, std::size_t length) const {
  RaiseDamage("on page " + std::to_string(number_) + " " + std::to_string(length) + " bytes at offset " +
              std::to_string(offset) + " would lie past the end of the page.");
}

// All writers check as the readers do: an offset that comes from a damaged page must not lead out of this one.
void Page::SetU8(std::size_t offset, std::uint8_t value) {
  Check(offset, 1);
  bytes_[offset] = value;
}

void Page::SetU16(std::size_t offset, std::uint16_t value) {
  Check(offset, 2);
  PutLittle(std::span(bytes_), offset, value);
}

// The upper byte of the value is dropped; the caller knows that there is none.
void Page::SetU24(std::size_t offset, std::uint32_t value) {
  Check(offset, 3);
  PutLittle(std::span(bytes_), offset, static_cast<std::uint16_t>(value));
  bytes_[offset + 2] = static_cast<std::uint8_t>(value >> 16U);
}

void Page::SetU32(std::size_t offset, std::uint32_t value) {
  Check(offset, 4);
  PutLittle(std::span(bytes_), offset, value);
}

// The source may overlap with the place: entries and rows move within their page.
void Page::Put(std::size_t offset, std::span<const std::uint8_t> source) {
  Check(offset, source.size());
  if (!source.empty()) std::memmove(bytes_.data() + offset, source.data(), source.size());
}

void Page::Fill(std::size_t offset, std::size_t length, std::uint8_t value) {
  Check(offset, length);
  std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), length, value);
}

std::string NameOf(RowPointer row) {
  return "row " + std::to_string(row.row) + " of page " + std::to_string(row.page);
}

}  // namespace tavi::access
