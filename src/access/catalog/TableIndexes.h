#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "access/catalog/Table.h"

namespace tavi::access {

/// What the change of one row means for one index.
struct IndexChange {
  std::size_t index = 0;
  std::optional<IndexKey> removed;
  std::optional<IndexKey> added;
  bool addsDistinctKey = false;
};

/// The indexes of one table: asked before a row changes, and brought up to date after it.
class TableIndexes {
 public:
  /// `definition` must outlive this object.
  TableIndexes(Pager& pager, const std::string& tableName, const TableDefinition& definition);

  [[nodiscard]] const std::vector<Index>& Indexes() const { return indexes_; }
  [[nodiscard]] BTree& Tree(std::size_t index) { return trees_[index]; }
  /// Raises ProviderFailure when keys of the index cannot be made (type or sort order).
  [[nodiscard]] const KeyEncoder& Encoder(std::size_t index);

  /// The changes of all indexes when a row goes from `before` (null: it is new) to `after` (null: it goes). An index
  /// whose key stays the same is left out. Changes nothing. Raises ProviderFailure for a duplicate key and
  /// ProviderIntegrity for a null in a key that must not have one.
  [[nodiscard]] std::vector<IndexChange> Plan(const RowValues* before, const RowValues* after);
  /// Makes the planned changes for the row at `row`.
  void Apply(const std::vector<IndexChange>& changes, RowPointer row);

  /// Whether all columns of an index are the same in two rows.
  [[nodiscard]] bool SameColumns(std::size_t index, const RowValues& left, const RowValues& right) const;

 private:
  void CheckAdded(IndexChange& change, const RowValues& after);
  void RemoveEntry(std::size_t index, const IndexEntry& entry);

  Pager* pager_;
  const std::string* tableName_;
  const TableDefinition* definition_;
  std::vector<Index> indexes_;
  std::vector<BTree> trees_;
  std::vector<std::unique_ptr<KeyEncoder>> encoders_;  ///< made when first needed
};

}  // namespace tavi::access
