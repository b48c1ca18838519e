#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "access/file/Pager.h"
#include "access/index/BTree.h"
#include "access/index/BTreeCheck.h"

namespace tavi::access::test {

/// An index of its own in a small file in memory, inside a write statement that is never committed.
class TestIndex {
 public:
  static constexpr PageNumber kTable = 7;

  TestIndex();
  ~TestIndex();

  [[nodiscard]] BTree& Tree() { return *tree_; }
  [[nodiscard]] Pager& File() { return *pager_; }
  [[nodiscard]] PageNumber Root() const { return root_; }
  [[nodiscard]] RowPointer Owned() const { return owned_; }
  [[nodiscard]] BTreeReport Check();
  /// All entries, forwards.
  [[nodiscard]] std::vector<IndexEntry> Entries();
  /// Expects a tree without any finding that holds exactly these entries, forwards and backwards.
  void ExpectHolds(const std::set<IndexEntry>& expected);

 private:
  std::unique_ptr<Pager> pager_;
  PageNumber root_ = 0;
  RowPointer owned_;
  std::unique_ptr<BTree> tree_;
};

/// A key of the bytes of a text.
[[nodiscard]] IndexKey KeyOf(std::string_view text);
/// The key of a Long, ascending.
[[nodiscard]] IndexKey LongKey(std::int32_t value);
[[nodiscard]] IndexEntry LongEntry(std::int32_t value);

}  // namespace tavi::access::test
