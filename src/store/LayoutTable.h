#pragma once

#include <vector>

#include "store/cDbFieldDef.h"

namespace tavi {

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
