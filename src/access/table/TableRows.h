#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "access/file/Pager.h"
#include "access/table/TableDefinition.h"
#include "platform/values/Value.h"

namespace tavi::access {

/// A row's values, one for each column of TableDefinition::columns, in that order.
using RowValues = std::vector<Value>;

/// The rows of one table without its indexes: insert, read, update, delete, walk. Long values are stored and fetched
/// here too. Holds a reference to the definition; every call works in the pager's current statement.
class TableRows {
 public:
  TableRows(Pager& pager, const TableDefinition& definition) : pager_(&pager), definition_(&definition) {}

  /// Stores a row and returns where. Values must already have their column's type (see ConvertForColumn in RowCodec.h)
  /// and length. Raises ProviderFailure when the row is larger than a page takes ("Record is too large.").
  RowPointer Insert(const RowValues& values);
  /// Replaces a row; its RowPointer stays the same even when the bytes move to another page. Long values that did not
  /// change are kept where they are. A row whose bytes stay the same is not written.
  void Update(RowPointer row, const RowValues& values);
  void Delete(RowPointer row);

  /// True when a live row is there (and not the moved body of another one).
  [[nodiscard]] bool Exists(RowPointer row) const;
  /// All values of a row. Raises ProviderFailure when there is none or it is damaged.
  [[nodiscard]] RowValues Read(RowPointer row) const;
  /// The values of some columns (positions in TableDefinition::columns); the others are null. Saves fetching long
  /// values.
  [[nodiscard]] RowValues Read(RowPointer row, const std::vector<bool>& wanted) const;

  /// The live rows in the order of pages and row numbers. `after` none starts at the first. Nothing at the end.
  [[nodiscard]] std::optional<RowPointer> Next(std::optional<RowPointer> after) const;
  /// Calls `visit` for each live row; rows may not be changed meanwhile. Returns early when it gives false.
  void Walk(const std::function<bool(RowPointer)>& visit) const;

  /// Frees all pages of rows and long values and empties the maps (drop table, delete of everything).
  void RemoveAll();
  /// Frees the long-value pages of one column (drop column); the row bytes stay.
  void RemoveLongValues(std::uint16_t columnId);

 private:
  Pager* pager_;
  const TableDefinition* definition_;
};

}  // namespace tavi::access
