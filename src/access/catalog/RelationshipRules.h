#pragma once

#include <utility>
#include <vector>

#include "access/catalog/StoredTable.h"

namespace tavi::access {

/// A row somewhere in the file.
struct TableRow {
  std::shared_ptr<StoredTable> table;
  RowPointer row;
};

/// What deleting a row brings with it.
struct DeletePlan {
  std::vector<TableRow> deleted;  ///< rows of other tables (or more of the same) that go too
  struct Detached {
    TableRow row;
    std::vector<std::size_t> columns;  ///< columns that become null
  };
  std::vector<Detached> detached;
};

/// Raises ProviderIntegrity unless every enforced relationship in which `table` is the foreign side finds its primary
/// row for `after`. A key with a null needs none. With `before`, only relationships whose columns differ are asked.
void CheckPrimaryRows(StoredTable& table, RelatedTables& related, const RowValues* before, const RowValues& after);

/// Collects what a delete of a row means for rows that refer to it. Changes nothing. Raises ProviderIntegrity when a
/// row outside the plan refers to one inside it.
DeletePlan PlanDelete(StoredTable& table, RelatedTables& related, RowPointer row);

/// A row that follows the changed key of the row it refers to.
struct FollowingUpdate {
  TableRow row;
  std::vector<std::pair<std::size_t, Value>> values;  ///< columns and what they become
};
/// The rows that refer to `before` and must follow when its key becomes that of `after`. Changes nothing. Raises
/// ProviderIntegrity when there are such rows and the relationship does not cascade.
std::vector<FollowingUpdate> PlanKeyChange(StoredTable& table, RelatedTables& related, const RowValues& before,
                                           const RowValues& after);

}  // namespace tavi::access
