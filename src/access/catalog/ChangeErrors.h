#pragma once

#include <string>
#include <string_view>

/// The refusals of changes to rows and definitions, in the words that people know from Access.
namespace tavi::access {

[[noreturn]] void RaiseDuplicate(const std::string& table, const std::string& index);
[[noreturn]] void RaiseNullKey(const std::string& table, const std::string& index);
[[noreturn]] void RaiseLongKey(const std::string& table, const std::string& index);
[[noreturn]] void RaiseRequired(const std::string& table, const std::string& column);
[[noreturn]] void RaiseZeroLength(const std::string& table, const std::string& column);
[[noreturn]] void RaiseAutoNumberChange(const std::string& table, const std::string& column);
[[noreturn]] void RaiseNoAutoNumberLeft(const std::string& table, const std::string& column);
/// A row of the foreign side without its partner in `primaryTable`.
[[noreturn]] void RaiseNoRelatedRow(const std::string& primaryTable);
/// A row of the primary side that rows of `foreignTable` refer to.
[[noreturn]] void RaiseRelatedRows(const std::string& foreignTable);

[[noreturn]] void RaiseNoTable(std::string_view table);
[[noreturn]] void RaiseTableExists(std::string_view table);
[[noreturn]] void RaiseSystemTable(std::string_view table);
[[noreturn]] void RaiseNoColumn(std::string_view table, std::string_view column);
[[noreturn]] void RaiseColumnExists(std::string_view table, std::string_view column);
[[noreturn]] void RaiseColumnInUse(std::string_view table, std::string_view column, std::string_view index);
[[noreturn]] void RaiseNoIndex(std::string_view table, std::string_view index);
[[noreturn]] void RaiseInRelationship(std::string_view what, std::string_view relationship);

}  // namespace tavi::access
