#pragma once

#include <optional>
#include <vector>

#include "access/sql/plan/Plan.h"
#include "access/sql/run/Aggregator.h"

/// Answers that an index gives, or a look at the pages, where every row would be read otherwise. They are the same as
/// those, in the same order.
namespace tavi::access::sql {

/// Count(*), Min and Max over all rows of one table: gives the aggregators of the plan what they would have found.
/// False, and nothing is given, where an aggregate needs more, or a column has no index that tells.
bool AggregateWithoutRows(const SelectPlan& plan, std::vector<Aggregator>& aggregators);

/// The first row of each value, in the order of a scan, for a select of one indexed column of numbers or dates and
/// nothing else; nothing for other selects.
std::optional<std::vector<RowPointer>> FirstRowsOfKeys(const SelectPlan& plan);

}  // namespace tavi::access::sql
