#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "access/file/UsageMap.h"
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
class BTree {
 public:
  BTree(Pager& pager, PageNumber tablePage, PageNumber root, RowPointer ownedPages)
      : pager_(&pager), tablePage_(tablePage), root_(root), ownedPages_(ownedPages) {}

  /// Formats a zeroed page as the empty root of a new tree.
  static void FormatRoot(Page& page, PageNumber tablePage);
  /// Replaces the content by these entries (sorted here), leaves filled left to right.
  void Build(std::vector<IndexEntry> entries);

  /// Adds an entry. Uniqueness is the caller's business (see ContainsKey).
  void Insert(const IndexEntry& entry);
  /// Removes an entry; false when it is not there.
  bool Remove(const IndexEntry& entry);
  /// True when an entry with exactly this key exists, whatever its row.
  [[nodiscard]] bool ContainsKey(const IndexKey& key) const;
  /// The row of the first entry with exactly this key.
  [[nodiscard]] std::optional<RowPointer> FindKey(const IndexKey& key) const;

  /// Walks entries in key order, either way. Usable while the tree is not changed.
  class Cursor {
   public:
    virtual ~Cursor() = default;
    /// The current entry; nothing before the first and behind the last.
    [[nodiscard]] virtual const IndexEntry* Current() const = 0;
    virtual void Next() = 0;
    virtual void Previous() = 0;
  };
  /// At the first entry whose key is >= `from` (as bytes; a prefix sorts before what it begins). Nullopt: the first one.
  [[nodiscard]] std::unique_ptr<Cursor> SeekFirst(const std::optional<IndexKey>& from) const;
  /// At the last entry whose key is < `before`, or begins with it when `orBeginsWith`. Nullopt: the last one.
  [[nodiscard]] std::unique_ptr<Cursor> SeekLast(const std::optional<IndexKey>& before, bool orBeginsWith) const;

  /// Frees all pages but the root, which becomes empty (`keepRoot`), or all of them.
  void Clear(bool keepRoot);
  /// Every page of the tree.
  [[nodiscard]] std::vector<PageNumber> Pages() const;

 private:
  Pager* pager_;
  PageNumber tablePage_;
  PageNumber root_;
  RowPointer ownedPages_;
};

}  // namespace tavi::access
