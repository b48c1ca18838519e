#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "access/file/Format.h"
#include "access/file/Page.h"
#include "access/index/IndexPage.h"

namespace tavi::access {

/// The mask of an index page as 64-bit words; bits behind its end are 0.
inline constexpr std::size_t kBitsPerWord = 64;
inline constexpr std::size_t kMaskWords = (format::index::kMaskSize * 8 + kBitsPerWord - 1) / kBitsPerWord;

/// One word of the mask of a page. Inline, and one load where the machine's byte order is that of the page, as it is
/// called several times for each step of a search in a page.
[[nodiscard]] inline std::uint64_t LoadMaskWord(const Page& page, std::size_t word) {
  constexpr std::size_t kWordSize = sizeof(std::uint64_t);
  // The 453 bytes of the mask are not a multiple of 8: the last word has 5 of them.
  const std::size_t size = std::min(kWordSize, format::index::kMaskSize - word * kWordSize);
  const auto bytes = page.Slice(format::index::kMaskOffset + word * kWordSize, size);
  std::uint64_t bits = 0;
  if constexpr (std::endian::native == std::endian::little) {
    if (size == kWordSize) {
      std::memcpy(&bits, bytes.data(), kWordSize);
      return bits;
    }
  }
  for (std::size_t i = 0; i < size; ++i) bits |= std::uint64_t{bytes[i]} << (8U * i);
  return bits;
}

/// The whole mask of an index page, taken out to be changed. Bit numbers are those of the page, up to 8 x mask bytes.
class EntryMask {
 public:
  /// All bits 0.
  EntryMask() = default;
  explicit EntryMask(const Page& page);
  void Store(Page& page) const;

  void Set(std::size_t bit) { words_[bit / kBitsPerWord] |= std::uint64_t{1} << (bit % kBitsPerWord); }
  void Clear(std::size_t bit) { words_[bit / kBitsPerWord] &= ~(std::uint64_t{1} << (bit % kBitsPerWord)); }
  /// Moves all bits > `after` up by `distance`.
  void MoveUp(std::size_t after, std::size_t distance);
  /// Moves all bits > `after` down by `distance` (at most `after`); those that they meet must be 0.
  void MoveDown(std::size_t after, std::size_t distance);

 private:
  using Words = std::array<std::uint64_t, kMaskWords>;
  /// Takes out the bits > `after`.
  [[nodiscard]] Words TakeAbove(std::size_t after);

  Words words_{};
};

/// Lays entries out on an index page from the start, replacing those that are there. The caller knows that they fit.
class EntryWriter {
 public:
  /// Entries behind the first are stored without their first `prefix` bytes.
  EntryWriter(Page& page, std::size_t prefix) : page_(page), prefix_(prefix) {}

  /// Adds the complete bytes of a leaf's entry.
  void Add(std::span<const std::uint8_t> bytes);
  /// Adds the complete bytes of a node's entry and its child.
  void Add(std::span<const std::uint8_t> bytes, PageNumber child);
  /// Writes mask, prefix and free bytes. Without it the page is not valid.
  void Finish();

 private:
  void Append(std::span<const std::uint8_t> bytes);

  Page& page_;
  std::size_t prefix_;
  std::size_t end_ = 0;
  EntryMask mask_;
};

}  // namespace tavi::access
