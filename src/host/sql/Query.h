#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "host/text/Table.h"
#include "platform/ado/Provider.h"

namespace tavi::host {

/// Runs one statement. Gives its rows, or, for a statement without rows, a table with the number of rows affected.
/// Errors are the provider's.
Table Query(ado::Connection& connection, const std::string& statement);

/// Rolls back what was begun and not committed; true when there was anything.
bool RollBackUnfinished(ado::Connection& connection);
/// What a person is told then.
inline constexpr char kRolledBack[] =
    "The transaction was not committed, so all that was done in it has been rolled back.";

/// A field's value as a cell; bytes and identifiers become text.
Cell CellOf(const Value& value);

/// The word of SQL for a type of column.
std::string TypeName(ado::DataType type);

/// The place behind the semicolon that ends the first statement of a text; nothing while it has no end. Semicolons
/// within quotes ('...', "..."), bracketed names and dates (#...#) belong to the statement.
std::optional<std::size_t> EndOfStatement(std::string_view text);

/// True when a statement gives rows: SELECT without INTO, EXPLAIN, or a select in parentheses.
bool GivesRows(std::string_view statement);

/// The place that a syntax error of the engine names ("(character 12 of ...)"), counted in characters from 0.
std::optional<std::size_t> PlaceInError(std::string_view description);

/// The line of a statement that has the given character, and below it a line with a mark under that character.
std::string MarkPlace(std::string_view statement, std::size_t character);

}  // namespace tavi::host
