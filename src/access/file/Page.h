#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "access/file/Bytes.h"

namespace tavi::access {

/// Position of a page in the file; page n starts at byte n x 4096. 0 stands for "none" in links.
using PageNumber = std::uint32_t;

/// Size of a page of the current (Jet 4) format in bytes.
inline constexpr std::size_t kPageSize = 4096;

/// One page of the file and the only code that touches its bytes: little-endian reads and writes, each checked against
/// the end of the page. A place past the end raises an error that names the page and the offset.
class Page {
 public:
  explicit Page(PageNumber number) : number_(number) {}

  [[nodiscard]] PageNumber Number() const { return number_; }
  /// Makes this page's bytes those of `other`, keeping its own number.
  void CopyFrom(const Page& other) { bytes_ = other.bytes_; }

  [[nodiscard]] std::uint8_t U8(std::size_t offset) const {
    Check(offset, 1);
    return bytes_[offset];
  }
  [[nodiscard]] std::uint16_t U16(std::size_t offset) const {
    Check(offset, 2);
    return GetLittle<std::uint16_t>(bytes_, offset);
  }
  [[nodiscard]] std::uint32_t U24(std::size_t offset) const {
    Check(offset, 3);
    return GetLittle<std::uint16_t>(bytes_, offset) | (std::uint32_t{bytes_[offset + 2]} << 16U);
  }
  [[nodiscard]] std::uint32_t U32(std::size_t offset) const {
    Check(offset, 4);
    return GetLittle<std::uint32_t>(bytes_, offset);
  }
  /// A stretch of the page.
  [[nodiscard]] std::span<const std::uint8_t> Slice(std::size_t offset, std::size_t length) const {
    Check(offset, length);
    return std::span<const std::uint8_t>(bytes_).subspan(offset, length);
  }
  [[nodiscard]] std::span<const std::uint8_t, kPageSize> All() const { return bytes_; }

  void SetU8(std::size_t offset, std::uint8_t value);
  void SetU16(std::size_t offset, std::uint16_t value);
  void SetU24(std::size_t offset, std::uint32_t value);
  void SetU32(std::size_t offset, std::uint32_t value);
  /// Copies bytes into the page. The source may lie in this page.
  void Put(std::size_t offset, std::span<const std::uint8_t> source);
  /// Sets a stretch to one byte value.
  void Fill(std::size_t offset, std::size_t length, std::uint8_t value);
  [[nodiscard]] std::span<std::uint8_t, kPageSize> AllMutable() { return bytes_; }

 private:
  // Inline, like the readers above: decoding rows and keys is little else.
  void Check(std::size_t offset, std::size_t length) const {
    if (offset > kPageSize || length > kPageSize - offset) RaisePastTheEnd(offset, length);
  }
  [[noreturn]] void RaisePastTheEnd(std::size_t offset, std::size_t length) const;

  PageNumber number_;
  std::array<std::uint8_t, kPageSize> bytes_{};
};

/// A page as readers hold it: its content does not change while it is held.
using PageHandle = std::shared_ptr<const Page>;

/// Where a row lies: its page and its number in the page's row directory. Identifies a row in index entries, long-value
/// descriptors and usage-map references.
struct RowPointer {
  PageNumber page = 0;
  std::uint8_t row = 0;

  auto operator<=>(const RowPointer&) const = default;
  /// True when it points nowhere.
  [[nodiscard]] bool IsNone() const { return page == 0 && row == 0; }
  /// The stored form: row number in the low byte, page number in the upper three.
  [[nodiscard]] std::uint32_t Packed() const { return (page << 8U) | row; }
  static RowPointer FromPacked(std::uint32_t packed) {
    return {packed >> 8U, static_cast<std::uint8_t>(packed & 0xFFU)};
  }
};

/// "row 3 of page 17", for messages.
[[nodiscard]] std::string NameOf(RowPointer row);

}  // namespace tavi::access
