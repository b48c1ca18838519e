#pragma once

#include <vector>

#include "access/index/EntryList.h"
#include "access/index/IndexPages.h"

namespace tavi::access {

/// Lays out a whole tree from entries that come in ascending order: full leaves from left to right, then the levels
/// above. The tree's root page must be an empty leaf.
class BTreeBuilder {
 public:
  BTreeBuilder(IndexPages& pages, PageNumber root) : pages_(pages), root_(root) {}

  /// Adds an entry (complete bytes) behind all others.
  void Add(std::span<const std::uint8_t> bytes);
  /// Writes what is left. Without it the tree is not whole.
  void Finish();

 private:
  void FlushLeaf();
  /// Writes the nodes above a level; returns them as a level.
  [[nodiscard]] NodeContent BuildLevel(const NodeContent& below, std::uint8_t level);
  [[nodiscard]] static std::size_t FullNode(const NodeContent& below, std::size_t first);
  void LinkBehind(Page& page, PageNumber previous);

  IndexPages& pages_;
  PageNumber root_;
  EntryList leaf_;          // entries of the leaf that is being filled
  std::size_t bytes_ = 0;   // their length
  std::size_t prefix_ = 0;  // and their shared prefix
  NodeContent leaves_;      // the leaves that are written, with a separator behind each
};

}  // namespace tavi::access
