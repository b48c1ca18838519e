#pragma once

#include <string>
#include <string_view>

namespace tavi::access {

/// Raises ProviderSyntax when a name cannot be that of a table, column or index: it must have 1 to 64 characters, not
/// begin with a blank, and hold none of . ! ` [ ] nor control characters. `what` says which it is ("table").
void CheckName(std::string_view name, std::string_view what);

/// True when two names are the same to the database: by the file's sort order, which ignores case and trailing blanks.
bool SameName(std::string_view left, std::string_view right);
/// True when `left` comes before `right` in that order; names that are the same are neither.
bool NameBefore(std::string_view left, std::string_view right);
/// A key that is equal for names that are the same.
std::string NameKey(std::string_view name);

}  // namespace tavi::access
