#pragma once

#include <array>
#include <string>

#include "access/table/TableDefinition.h"

namespace tavi::access {

/// Names of the engine's own tables and of those of their columns that the engine uses.
namespace system_name {
inline constexpr char kObjects[] = "MSysObjects";
inline constexpr char kAces[] = "MSysACEs";
inline constexpr char kQueries[] = "MSysQueries";
inline constexpr char kRelationships[] = "MSysRelationships";

inline constexpr char kId[] = "Id";
inline constexpr char kParentId[] = "ParentId";
inline constexpr char kName[] = "Name";
inline constexpr char kType[] = "Type";
inline constexpr char kDateCreate[] = "DateCreate";
inline constexpr char kDateUpdate[] = "DateUpdate";
inline constexpr char kOwner[] = "Owner";
inline constexpr char kFlags[] = "Flags";
inline constexpr char kLvProp[] = "LvProp";

inline constexpr char kObjectId[] = "ObjectId";
inline constexpr char kSid[] = "SID";
inline constexpr char kAcm[] = "ACM";
inline constexpr char kInheritable[] = "FInheritable";

inline constexpr char kRelationship[] = "szRelationship";
inline constexpr char kRelationFlags[] = "grbit";
inline constexpr char kColumnCount[] = "ccolumn";
inline constexpr char kColumnNumber[] = "icolumn";
inline constexpr char kObject[] = "szObject";
inline constexpr char kColumn[] = "szColumn";
inline constexpr char kReferencedObject[] = "szReferencedObject";
inline constexpr char kReferencedColumn[] = "szReferencedColumn";
}  // namespace system_name

/// A system table of a new file: its name and its definition, with the definition page but without maps and roots.
struct SystemTable {
  std::string name;
  TableDefinition definition;
};

/// The four tables that every file has, in the order of their pages (2 to 5).
std::array<SystemTable, 4> MakeSystemTables();

}  // namespace tavi::access
