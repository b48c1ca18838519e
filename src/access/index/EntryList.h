#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
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

/// The children of a node page in order and what parts them: separator i is the last entry below child i. The last
/// child (the tail) has no separator.
struct NodeContent {
  NodeContent() = default;
  /// Of a node page. A page without a tail gives up the entry of its last child.
  explicit NodeContent(const IndexPage& page);

  EntryList separators;
  std::vector<PageNumber> children;

  /// The position of a child. Raises ProviderFailure naming `page` when it is not there.
  [[nodiscard]] std::size_t PositionOf(PageNumber child, PageNumber page) const;
  [[nodiscard]] bool IsTail(std::size_t position) const { return position + 1 == children.size(); }
  /// Takes a child out. When the tail goes, the child before it becomes the tail and its separator is returned: it is
  /// now the last entry of the node.
  std::optional<EntryBytes> Remove(std::size_t position);
  /// Puts another node's children behind these, parted by `separator`.
  void Append(std::span<const std::uint8_t> separator, const NodeContent& other);
  /// A stretch of the children with the separators between them.
  [[nodiscard]] NodeContent Part(EntryRange range) const;

  /// True when the stretch of children fits on one page.
  [[nodiscard]] bool Fits(EntryRange range) const;
  [[nodiscard]] bool Fits() const { return Fits({0, children.size()}); }
};

/// Makes a page a node with this content, which fits. Its links to the pages of its level stay.
void WriteNode(Page& page, PageNumber table, std::uint8_t level, const NodeContent& content);

}  // namespace tavi::access
