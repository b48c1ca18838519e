#pragma once

#include <optional>
#include <vector>

#include "access/index/EntryList.h"

namespace tavi::access {

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
