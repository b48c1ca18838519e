#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "access/file/Format.h"
#include "access/file/Page.h"

namespace tavi::access {

// A page of a B-tree:
//
//   00 [2]    04 01 leaf, 03 01 node            10 [4]    next page of the level
//   02 [2]    free bytes                        14 [4]    node: the last child ("tail"), which has no entry
//   04 [4]    definition page of the table      18 [2]    prefix length p
//   08 [4]    0                                 1A [1]    level, 0 = leaf
//   0C [4]    previous page of the level        1B [453]  mask: bit k set = an entry ends at 1E0 + k
//   1E0       the entries, back to back; all but the first without their first p bytes, which are those of the first
//
// An entry is the key bytes, page [3] and row [1] of the row, big-endian; on a node page the child page [4] follows,
// and key and row are those of the last entry below that child.
//
// Example, a leaf with the keys of "a" (page 1B, row 1) and "abcdefg" (row 0):
//   0000  04 01 0a 0e 18 00 00 00 ...           free E0A, table 18
//   001b  00 01 40 00 ...                       entries end at 8 and 22
//   01e0  7f 4a 01 00  00 00 1b 01    7f 4a 4c 4d 4f 51 53 55 01 00  00 00 1b 00

/// The complete bytes of an entry without a child: key, page, row. Entries sort by them.
using EntryBytes = std::vector<std::uint8_t>;

/// Where the stored bytes of an entry lie: offsets from the start of the entries.
struct EntryPlace {
  std::size_t start = 0;
  std::size_t end = 0;
};

/// Reads an index page where it lies, decoding no more than what is asked for. The page must outlive this object and
/// not change. What does not fit together raises ProviderFailure naming the page.
class IndexPage {
 public:
  /// Checks type, prefix and the end of the entries.
  explicit IndexPage(const Page& page);

  [[nodiscard]] PageNumber Number() const { return page_->Number(); }
  [[nodiscard]] bool IsLeaf() const { return isLeaf_; }
  [[nodiscard]] PageNumber Table() const { return page_->U32(format::index::kTableOffset); }
  [[nodiscard]] PageNumber Previous() const { return page_->U32(format::index::kPreviousOffset); }
  [[nodiscard]] PageNumber Next() const { return page_->U32(format::index::kNextOffset); }
  [[nodiscard]] PageNumber Tail() const { return page_->U32(format::index::kTailOffset); }
  [[nodiscard]] std::uint8_t Level() const { return page_->U8(format::index::kLevelOffset); }
  /// True when the mask has an entry end at the very start, where none can be.
  [[nodiscard]] bool MarksTheStart() const { return (page_->U8(format::index::kMaskOffset) & 1U) != 0; }
  [[nodiscard]] std::size_t FreeBytes() const { return page_->U16(format::index::kFreeBytesOffset); }
  [[nodiscard]] std::size_t PrefixLength() const { return prefix_; }

  [[nodiscard]] bool IsEmpty() const { return end_ == 0; }
  /// The end of the last entry, 0 when there is none. Where the next entry would start.
  [[nodiscard]] std::size_t End() const { return end_; }
  /// The entry that holds the byte at an offset, which is < End().
  [[nodiscard]] EntryPlace EntryAt(std::size_t offset) const;
  /// Where the first entry lies whose bytes are >= `target`: the start of it, or End().
  [[nodiscard]] std::size_t LowerBound(std::span<const std::uint8_t> target) const;
  /// Compares an entry, without its child, with other bytes.
  [[nodiscard]] std::strong_ordering Compare(EntryPlace entry, std::span<const std::uint8_t> target) const;

  /// Writes the complete bytes of an entry, without its child, to `bytes`.
  void Decode(EntryPlace entry, EntryBytes& bytes) const;
  /// The child of a node's entry.
  [[nodiscard]] PageNumber Child(EntryPlace entry) const;
  /// The child below which entries with these bytes belong: of the first entry that is not less, else the tail (on a
  /// page without a tail the last child).
  [[nodiscard]] PageNumber ChildFor(std::span<const std::uint8_t> target) const;
  /// The child below which the greatest entries are.
  [[nodiscard]] PageNumber LastChild() const;

 private:
  [[nodiscard]] std::uint64_t MaskWord(std::size_t word) const;
  [[nodiscard]] std::size_t FindEnd() const;
  [[nodiscard]] std::size_t BoundaryAtOrBefore(std::size_t offset) const;
  [[nodiscard]] std::size_t BoundaryAfter(std::size_t offset) const;
  void CheckLength(EntryPlace entry) const;

  const Page* page_;
  std::span<const std::uint8_t> entries_;
  bool isLeaf_;
  std::size_t prefix_;
  std::size_t end_;
};

/// The row of an entry's complete bytes.
[[nodiscard]] RowPointer RowOfEntry(std::span<const std::uint8_t> bytes);

/// Sets type, table and level of a page and takes tail and prefix away. Makes a zeroed page an index page without
/// entries. Level 0 is a leaf.
void FormatIndexPage(Page& page, PageNumber table, std::uint8_t level);

/// Adds an entry at `offset` (the start of an entry, or the end) of a leaf, moving what is behind it. False, and
/// nothing is changed, when it does not fit or does not share the prefix of the page.
[[nodiscard]] bool InsertInPlace(Page& page, std::size_t offset, std::span<const std::uint8_t> bytes);
/// Takes an entry out of a leaf.
void RemoveInPlace(Page& page, EntryPlace entry);

}  // namespace tavi::access
