#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "access/index/IndexPages.h"
#include "access/index/KeyEncoder.h"

namespace tavi::access {

/// One entry of an index: the key of a row and where the row is.
struct IndexEntry {
  IndexKey key;
  RowPointer row;
  auto operator<=>(const IndexEntry&) const = default;
};

/// The B-tree of one physical index, on its pages in the file. Holds no state: every call works in the pager's current
/// statement. Damage found on the way raises ProviderFailure naming the page; links in a circle end with an error.
/// After an error of a changing call the statement must be rolled back.
///
/// What holds between calls (CheckBTree looks for it):
///  1. All leaves are on one level, and hold the entries in strictly ascending order of key bytes and row.
///  2. A node page has an entry for each child but the last, the tail; its key and row are the last entry below that
///     child. A node page has at least two children.
///  3. The pages of a level are linked in order; no leaf but a root is empty.
///  4. The root page never changes. The index's map of owned pages holds exactly the pages of the tree.
class BTree {
 public:
  /// The longest key in bytes that an index takes, so that at least three entries fit on every page.
  static constexpr std::size_t kMaximumKeySize =
      format::index::kEntriesSize / 3 - format::index::kEntryRowPointerSize - format::index::kEntryChildSize;

  /// `ownedPages` is the usage map of the tree's pages; the root is in it.
  BTree(Pager& pager, PageNumber tablePage, PageNumber root, RowPointer ownedPages)
      : pages_(pager, tablePage, ownedPages), root_(root) {}

  /// Formats a zeroed page as the empty root of a new tree.
  static void FormatRoot(Page& page, PageNumber tablePage);
  /// Replaces the content by these entries (sorted here), leaves filled left to right. Raises ProviderFailure for a key
  /// that is too long and for an entry that is there twice.
  void Build(std::vector<IndexEntry> entries);

  /// Adds an entry. Uniqueness is the caller's business (see ContainsKey). Raises ProviderFailure for a key that is too
  /// long, and when the tree has this very entry already.
  void Insert(const IndexEntry& entry);
  /// Removes an entry; false when it is not there.
  bool Remove(const IndexEntry& entry);
  /// True when an entry with exactly this key exists, whatever its row.
  [[nodiscard]] bool ContainsKey(const IndexKey& key) const;
  /// The row of the first entry with exactly this key.
  [[nodiscard]] std::optional<RowPointer> FindKey(const IndexKey& key) const;

  /// Walks entries in key order, either way. Usable while the tree is not changed and the statement lasts.
  class Cursor {
   public:
    virtual ~Cursor() = default;
    /// The current entry; null before the first and behind the last. Valid until the cursor moves.
    [[nodiscard]] virtual const IndexEntry* Current() const = 0;
    /// Before the first entry Next goes to it; behind the last one Previous goes back to it.
    virtual void Next() = 0;
    virtual void Previous() = 0;
  };
  /// At the first entry whose key is >= `from` (as bytes; a prefix sorts before what it begins). Nullopt: the first
  /// one.
  [[nodiscard]] std::unique_ptr<Cursor> SeekFirst(const std::optional<IndexKey>& from) const;
  /// At the last entry whose key is < `before`, or begins with it when `orBeginsWith`. Nullopt: the last one.
  [[nodiscard]] std::unique_ptr<Cursor> SeekLast(const std::optional<IndexKey>& before, bool orBeginsWith) const;

  /// Looks up one key after the other, as a join does. The leaf of the last one is kept, for the next is often on it.
  /// Usable as long as a cursor.
  class Finder {
   public:
    /// The tree must outlive it.
    explicit Finder(const BTree& tree) : tree_(&tree) {}
    /// As BTree::FindKey.
    [[nodiscard]] std::optional<RowPointer> FindKey(const IndexKey& key);

   private:
    const BTree* tree_;
    std::optional<ReadIndexPage> leaf_;
  };

  /// Frees all pages but the root, which becomes empty (`keepRoot`), or all of them. Goes by the map of owned pages, so
  /// that a damaged tree can be cleared as well.
  void Clear(bool keepRoot);
  /// Every page of the tree, level by level from the root.
  [[nodiscard]] std::vector<PageNumber> Pages() const;

 private:
  IndexPages pages_;
  PageNumber root_;
};

}  // namespace tavi::access
