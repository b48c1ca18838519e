#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tavi::host {

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
