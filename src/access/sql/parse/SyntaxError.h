#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavi::access::sql {

/// Raises ProviderSyntax. `problem` is the sentence without its full stop; the place (counted in characters from 1,
/// with the text around it) is added. `position` is a byte offset in the statement.
[[noreturn]] void RaiseSyntax(std::string_view statement, std::size_t position, const std::string& problem);

}  // namespace tavi::access::sql
