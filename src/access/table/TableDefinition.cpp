#include "access/table/TableDefinition.h"

#include <algorithm>

#include "access/file/Format.h"
#include "platform/values/Text.h"

namespace tavi::access {

// By the flag, not by the type: files of Access have numbers in the variable part, and texts of fixed length.
bool ColumnDefinition::IsFixed() const {
  return (flags & format::column_flag::kFixed) != 0;
}

// The flag alone does not say it: it can stand on columns of other types, too.
bool ColumnDefinition::IsAutoNumber() const {
  return type == ColumnType::Long && (flags & format::column_flag::kAutonumber) != 0;
}

bool ColumnDefinition::IsAutoGuid() const {
  return type == ColumnType::Guid && (flags & format::column_flag::kAutonumberGuid) != 0;
}

bool ColumnDefinition::IsLongValue() const {
  return type == ColumnType::Memo || type == ColumnType::Ole;
}

bool ColumnDefinition::IsCompressed() const {
  return (extendedFlags & format::column_extended_flag::kCompressed) != 0;
}

const ColumnDefinition* TableDefinition::FindColumn(std::uint16_t id) const {
  const auto found = std::ranges::find(columns, id, &ColumnDefinition::id);
  return found == columns.end() ? nullptr : &*found;
}

// Names of columns are told apart without regard to case, as in statements.
const ColumnDefinition* TableDefinition::FindColumn(std::string_view name) const {
  const auto found = std::ranges::find_if(
      columns, [name](const ColumnDefinition& column) { return EqualIgnoringCase(column.name, name); });
  return found == columns.end() ? nullptr : &*found;
}

}  // namespace tavi::access
