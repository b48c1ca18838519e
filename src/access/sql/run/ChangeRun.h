#pragma once

#include "access/sql/run/Defaults.h"
#include "access/sql/run/RowScope.h"
#include "access/sql/run/TableChanges.h"

/// The statements that change the file, each run inside an open write statement. A function that raises an error may
/// have changed rows already: the statement is to be rolled back.
namespace tavi::access::sql {

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
