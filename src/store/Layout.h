#pragma once

#include <string>
#include <vector>

#include "platform/ado/Provider.h"
#include "store/cDbFieldDef.h"

/// The layout of a club's file: what a new one gets, and what later versions added to older ones.
namespace tavi {

/// Makes all tables, columns, defaults, keys and indexes of a membership database of the current layout in a new, empty
/// file, so that opening it needs no change of layout, and the row of default handicap settings. Raises the provider's
/// error when a table is there already; the file then holds what was made before.
void CreateBaseFile(ado::Connection& connection);

/// Adds the row of default handicap settings to a file of the current layout that has none: switching the calculation
/// off is remembered in it.
void StoreFirstHandicapSettings(ado::Connection& connection);

/// The statement that makes the table of the governing body's members.
inline constexpr const char* kCreateEbuMembersTable =
    "Create Table EBUMembershipList (EBUNumber Long PRIMARY KEY, FirstName Text (50), LastName Text (50), "
    "CountyCode Text (4), Location Text (50))";

/// The columns that later versions introduced, in the order in which the layout check looks at them.
std::vector<cDbFieldDef> AddedSettingsColumns();
std::vector<cDbFieldDef> AddedMembersColumns();
/// Those of MasterPoints, Partnerships and Competitions.
std::vector<cDbFieldDef> AddedResultColumns();

/// A column that a later version gave up.
cDbFieldDef ObsoleteColumn(const std::string& tableName, const std::string& fieldName);

}  // namespace tavi
