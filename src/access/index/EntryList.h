#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "access/index/IndexPage.h"

namespace tavi::access {

/// Complete entries (key, page, row; no child) in order, taken out of a page to be changed and laid out anew.
class EntryList {
 public:
  EntryList() = default;
  explicit EntryList(const IndexPage& page);

  [[nodiscard]] std::size_t Size() const { return ends_.size(); }
  [[nodiscard]] std::span<const std::uint8_t> operator[](std::size_t index) const;
  [[nodiscard]] EntryBytes Copy(std::size_t index) const;
  /// The position of the first entry whose bytes are >= `target`.
  [[nodiscard]] std::size_t LowerBound(std::span<const std::uint8_t> target) const;

  void Append(std::span<const std::uint8_t> bytes) { Insert(Size(), bytes); }
  void Insert(std::size_t index, std::span<const std::uint8_t> bytes);
  void Erase(std::size_t index);
  void Replace(std::size_t index, std::span<const std::uint8_t> bytes);

 private:
  [[nodiscard]] std::size_t Start(std::size_t index) const { return index == 0 ? 0 : ends_[index - 1]; }

  std::vector<std::uint8_t> bytes_;
  std::vector<std::size_t> ends_;
};

/// A stretch of the entries of a list.
struct EntryRange {
  std::size_t first = 0;
  std::size_t count = 0;
};

/// The longest prefix that all entries of the stretch share and that leaves out the row of each.
[[nodiscard]] std::size_t SharedPrefix(const EntryList& entries, EntryRange range);
/// The bytes that the stretch takes on a leaf with this prefix.
[[nodiscard]] std::size_t StoredSize(const EntryList& entries, EntryRange range, std::size_t prefix);
/// True when the stretch fits on a leaf, with the prefix that is best for it.
[[nodiscard]] bool FitsOnLeaf(const EntryList& entries, EntryRange range);

/// Replaces the entries of a leaf; the stretch must fit with this prefix.
void WriteLeafEntries(Page& page, const EntryList& entries, EntryRange range, std::size_t prefix);

}  // namespace tavi::access
