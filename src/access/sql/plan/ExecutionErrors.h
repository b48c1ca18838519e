#pragma once

#include <string>
#include <string_view>

#include "platform/values/Error.h"

/// The errors that planning and running statements raise, each in one place. All have the engine's source.
namespace tavi::access::sql {

/// Numbers that only the engine raises.
inline constexpr std::uint32_t kRowDeletedNumber = 0x80040E23U;
inline constexpr std::uint32_t kNotUpdatableNumber = 0x800A0CB3U;
inline constexpr std::uint32_t kCancelledNumber = 0x80040E4EU;

/// An error of the engine.
Error EngineError(ErrorNumber number, const std::string& description);
Error EngineError(std::uint32_t number, const std::string& description);

/// ProviderBadParameter: `name` is no column of what the statement reads (`where` says what that is).
Error UnknownColumnError(std::string_view name, std::string_view where);
/// ProviderFailure: a name that two tables of the statement have.
Error AmbiguousColumnError(std::string_view name);
/// ProviderNoTable.
Error UnknownTableError(std::string_view name);
/// ProviderSyntax, for a statement that parses but makes no sense; `reason` is a whole sentence.
Error StatementError(const std::string& reason);
/// ProviderPermission, for a file or object that cannot be changed.
Error ReadOnlyError(std::string_view object);
/// kRowDeletedNumber: the current row is gone.
Error RowDeletedError();
/// kNotUpdatableNumber: a record set, or a field of it, that cannot be changed.
Error NotUpdatableError(std::string_view what);
/// kCancelledNumber: somebody asked that the statement be given up.
Error CancelledError();

}  // namespace tavi::access::sql
