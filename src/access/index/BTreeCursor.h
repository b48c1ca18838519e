#pragma once

#include "access/index/BTree.h"

namespace tavi::access {

/// Stands at an entry of a leaf and goes along the chain of leaves. Each entry must follow the one before it, on the
/// same leaf too: otherwise ProviderFailure is raised. So a walk in one direction ends, wherever the links of a damaged
/// chain lead: it meets no entry twice.
class BTreeCursor final : public BTree::Cursor {
 public:
  /// At the first entry whose bytes are >= `target`, behind the last entry when there is none.
  static BTreeCursor AtOrAfter(const IndexPages& pages, PageNumber root, std::span<const std::uint8_t> target);
  /// Behind the last entry.
  static BTreeCursor BehindLast(const IndexPages& pages, PageNumber root);

  [[nodiscard]] const IndexEntry* Current() const override { return place_ == Place::AtEntry ? &current_ : nullptr; }
  void Next() override;
  void Previous() override;

 private:
  enum class Place { BeforeFirst, AtEntry, BehindLast };

  BTreeCursor(const IndexPages& pages, PageNumber leaf) : pages_(pages), leaf_(pages, leaf) {}
  void GoForwardFrom(std::size_t offset);
  void GoBackFrom(std::size_t offset);
  /// Moves to a neighbouring leaf, which must not be a node.
  void Enter(PageNumber leaf);
  void Take(EntryPlace entry);
  void Leave(Place place);

  IndexPages pages_;
  ReadIndexPage leaf_;
  EntryPlace entry_;
  Place place_ = Place::BehindLast;
  EntryBytes bytes_;   // of the current entry, else empty
  EntryBytes before_;  // of the entry that it came from, else empty
  IndexEntry current_;
};

/// Goes down to the leaf where entries with these bytes belong. The pages from the root to the leaf are added to `path`
/// unless it is null.
[[nodiscard]] PageNumber FindLeaf(const IndexPages& pages, PageNumber root, std::span<const std::uint8_t> target,
                                  std::vector<PageNumber>* path);
/// Goes down to the last leaf.
[[nodiscard]] PageNumber FindLastLeaf(const IndexPages& pages, PageNumber root);

}  // namespace tavi::access
