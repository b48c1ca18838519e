#pragma once

#include <limits>

#include "access/sql/run/RowScope.h"

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

}  // namespace tavi::access::sql
