#pragma once

#include <optional>
#include <vector>

#include "access/index/EntryList.h"
#include "access/index/IndexPages.h"

namespace tavi::access {

/// One insertion into or removal from a B-tree: goes down to the leaf, changes it, and takes what follows from it up to
/// the root. Made for a single call of Insert or Remove.
class BTreeEditor {
 public:
  BTreeEditor(IndexPages& pages, PageNumber root) : pages_(pages), root_(root) {}

  /// Adds an entry (complete bytes). Raises ProviderFailure when it is there already.
  void Insert(std::span<const std::uint8_t> bytes);
  /// False when it is not there.
  bool Remove(std::span<const std::uint8_t> bytes);

 private:
  /// A page that takes the place of a child, or part of it, and the last entry below it; none when that is as before.
  struct Branch {
    PageNumber page = 0;
    std::optional<EntryBytes> last;
  };
  /// Where a page that overflows is cut: entries that come in order leave full pages behind.
  enum class Cut { Middle, NearEnd, NearStart };

  void InsertAnew(const IndexPage& leaf, std::size_t offset, std::span<const std::uint8_t> bytes);
  void RemoveLeaf(PageNumber leaf);
  void SplitLeaf(const EntryList& entries);
  [[nodiscard]] std::vector<EntryRange> LeafRanges(const EntryList& entries) const;
  [[nodiscard]] std::vector<EntryRange> NodeRanges(const NodeContent& content) const;

  /// Puts branches in the place of a child: the page below the node at `depth` of the path. None: the child is gone.
  void ReplaceChild(std::size_t depth, const std::vector<Branch>& branches);
  /// Stores a node of the path. `last`: the last entry below it when that has changed.
  void StoreNode(std::size_t depth, const NodeContent& content, std::optional<EntryBytes> last);
  void StoreRoot(const NodeContent& content);
  void SplitNode(std::size_t depth, const NodeContent& content, std::optional<EntryBytes> last);
  /// Writes a stretch of a node's children to a page; returns it as a branch.
  Branch WriteNodePart(Page& page, std::size_t depth, const NodeContent& content, EntryRange range);
  /// A node that is left with one child joins a sibling, or takes children from it.
  void JoinSibling(std::size_t depth, const NodeContent& content, std::optional<EntryBytes> last);
  [[nodiscard]] NodeContent ReadSibling(PageNumber number) const;
  /// Puts the children of two neighbours, `left` and the one behind it, on one page or evenly on both, and brings their
  /// parent up to date. False, and nothing is changed, when that cannot be.
  [[nodiscard]] bool Distribute(const NodeContent& joined, std::size_t depth, NodeContent& parent, std::size_t left);
  /// The root takes over its only child.
  void CollapseRoot(PageNumber child);
  /// The root becomes a node above pages that took its content.
  void RaiseTree(const std::vector<Branch>& branches);

  [[nodiscard]] std::uint8_t LevelAt(std::size_t depth) const;
  [[nodiscard]] bool LeafIsRoot() const { return path_.size() == 1; }

  IndexPages& pages_;
  PageNumber root_;
  std::vector<PageNumber> path_;  // from the root to the leaf
  Cut cut_ = Cut::Middle;
};

}  // namespace tavi::access
