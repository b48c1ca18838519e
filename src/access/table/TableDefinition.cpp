#include "access/table/TableDefinition.h"

#include <algorithm>

#include "access/file/Format.h"
#include "platform/values/Text.h"

namespace tavi::access {

bool ColumnDefinition::IsFixed() const {
  return (flags & format::column_flag::kFixed) != 0;
}

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

const ColumnDefinition* TableDefinition::FindColumn(std::string_view name) const {
  const auto found = std::ranges::find_if(
      columns, [name](const ColumnDefinition& column) { return EqualIgnoringCase(column.name, name); });
  return found == columns.end() ? nullptr : &*found;
}

}  // namespace tavi::access
