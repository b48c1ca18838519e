#pragma once

#include <limits>

#include "access/sql/run/RowScope.h"
#include "access/sql/run/TableChanges.h"

namespace tavi::access::sql {

inline constexpr std::size_t kAllRows = std::numeric_limits<std::size_t>::max();

/// Runs a select and gives its rows as values, in order, TOP and unions done; at most `limit` of them. `outer`: the
/// scope of the level around, null for none. Call inside a statement.
std::vector<RowValues> CollectValues(StatementContext& context, const SelectPlan& plan, const RowScope* outer,
                                     std::size_t limit = kAllRows);

/// The first column of the rows.
std::vector<Value> CollectFirstColumn(StatementContext& context, const SelectPlan& plan, const RowScope* outer,
                                      std::size_t limit);

/// Runs a select whose plan is a keyset and gives its rows as packed row pointers, one for each source of the plan (0
/// for the missing side of an outer join), row after row.
std::vector<std::uint32_t> CollectKeyset(StatementContext& context, const SelectPlan& plan);

// The statements that change the file, each run inside an open write statement. A function that raises an error may
// have changed rows already: the statement is to be rolled back.

/// Returns the number of rows added. Columns that the statement does not name get their defaults.
std::int64_t RunInsert(StatementContext& context, TableChanges& changes, Defaults& defaults, const Insert& insert,
                       const SelectPlan& plan);
/// Returns the number of rows changed. All rows are found before the first one is changed; the values of a row are
/// computed from what it held before.
std::int64_t RunUpdate(StatementContext& context, TableChanges& changes, const Update& update, const SelectPlan& plan);
/// Returns the number of rows deleted.
std::int64_t RunDelete(StatementContext& context, TableChanges& changes, const Delete& statement,
                       const SelectPlan& plan);
/// Makes a table of a select's rows. Returns their number.
std::int64_t RunSelectInto(StatementContext& context, TableChanges& changes, const Select& select,
                           const SelectPlan& plan);
/// CREATE, ALTER and DROP.
void RunDefinition(StatementContext& context, const Statement& statement);

}  // namespace tavi::access::sql
