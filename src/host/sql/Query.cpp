#include "host/sql/Query.h"

#include <algorithm>
#include <charconv>
#include <type_traits>
#include <vector>

#include "host/text/Table.h"
#include "platform/values/Convert.h"
#include "platform/values/Text.h"

// What the shell has to know of a statement without understanding it: where it ends, and whether it gives rows. For
// both it is enough to step over what stands in quotes, brackets and between number signs, in which semicolons and
// words mean nothing. A quote within quotes is doubled: it ends one piece and begins the next at once, so that it needs
// no rule.
//
//   Insert Into T Values ('a;b', 'O''Neil', [x;y], #1/2/2001#);     one statement
namespace tavi::host {

// Numbers stay numbers, so that they stand to the right and are numbers in JSON. Amounts, decimals, dates, bytes and
// identifiers become their exact text.
Cell CellOf(const Value& value) {
  return std::visit(
      [&](const auto& content) -> Cell {
        using Type = std::decay_t<decltype(content)>;
        if constexpr (std::is_same_v<Type, Null>)
          return std::monostate{};
        else if constexpr (std::is_same_v<Type, bool> || std::is_same_v<Type, std::string>)
          return content;
        else if constexpr (std::is_integral_v<Type>)
          return static_cast<std::int64_t>(content);
        else if constexpr (std::is_floating_point_v<Type>)
          return static_cast<double>(content);
        else
          return ToText(value);
      },
      value);
}

Table Query(ado::Connection& connection, const std::string& statement) {
  // The provider has two calls, and only one of them tells how many rows were changed.
  if (!GivesRows(statement)) {
    Table table({"Rows"});
    table.Add({connection.Execute(statement)});
    return table;
  }
  const std::unique_ptr<ado::Recordset> rows = connection.OpenRecordset(
      statement, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly, ado::SourceKind::CommandText);
  std::vector<std::string> names;
  for (const ado::Field& field : rows->Fields()) names.push_back(field.name);
  Table table(names);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    std::vector<Cell> row;
    for (const std::string& name : names) row.push_back(CellOf(rows->Get(name)));
    table.Add(std::move(row));
  }
  return table;
}

bool RollBackUnfinished(ado::Connection& connection) {
  if (connection.TransactionLevel() == 0) return false;
  // From the innermost out: rolling one back leaves those around it open.
  while (connection.TransactionLevel() > 0) connection.RollbackTrans();
  return true;
}

// The words by which a column of the type is made.
std::string TypeName(ado::DataType type) {
  switch (type) {
    case ado::DataType::SmallInt:
      return "Short";
    case ado::DataType::Integer:
      return "Long";
    case ado::DataType::Single:
      return "Single";
    case ado::DataType::Double:
      return "Double";
    case ado::DataType::Currency:
      return "Currency";
    case ado::DataType::Date:
      return "DateTime";
    case ado::DataType::Boolean:
      return "Bit";
    case ado::DataType::UnsignedTinyInt:
      return "Byte";
    case ado::DataType::Guid:
      return "Guid";
    case ado::DataType::Binary:
      return "Binary";
    case ado::DataType::WChar:
      return "Text";
    case ado::DataType::Numeric:
      return "Decimal";
    case ado::DataType::LongVarBinary:
      return "OLE";
  }
  return "Unknown";
}

namespace {

constexpr std::string_view kWordCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

/// The character that closes what `opening` begins; 0 for any other character.
char ClosingOf(char opening) {
  switch (opening) {
    case '\'':
    case '"':
    case '#':
      return opening;
    case '[':
      return ']';
    default:
      return '\0';
  }
}

/// The place behind what begins at `begin` with a quote or bracket. A doubled quote begins the next piece at once.
/// What is not closed goes to the end of the text.
std::size_t BehindQuoted(std::string_view text, std::size_t begin) {
  const std::size_t end = text.find(ClosingOf(text[begin]), begin + 1);
  return end == std::string_view::npos ? text.size() : end + 1;
}

/// The words of a statement in capitals, without what stands in quotes or brackets.
std::vector<std::string> WordsOf(std::string_view text) {
  std::vector<std::string> words;
  for (std::size_t place = 0; place < text.size();) {
    if (ClosingOf(text[place]) != '\0') {
      place = BehindQuoted(text, place);
    } else if (kWordCharacters.find(text[place]) != std::string_view::npos) {
      const std::size_t end = std::min(text.find_first_not_of(kWordCharacters, place), text.size());
      words.push_back(UpperCase(text.substr(place, end - place)));
      place = end;
    } else {
      ++place;
    }
  }
  return words;
}

}  // namespace

std::optional<std::size_t> EndOfStatement(std::string_view text) {
  for (std::size_t place = 0; place < text.size();) {
    if (text[place] == ';') return place + 1;
    place = ClosingOf(text[place]) != '\0' ? BehindQuoted(text, place) : place + 1;
  }
  return std::nullopt;
}

bool GivesRows(std::string_view statement) {
  const std::vector<std::string> words = WordsOf(statement);
  if (words.empty()) return false;
  if (words.front() == "EXPLAIN") return true;
  // SELECT ... INTO makes a table and gives no rows. Parentheses before a select are no words, so that it is the first
  // word with them, too.
  return words.front() == "SELECT" && std::find(words.begin(), words.end(), "INTO") == words.end();
}

std::optional<std::size_t> PlaceInError(std::string_view description) {
  constexpr std::string_view kMark = "(character ";
  // The engine's messages have the place in words, because they are read by people; errors carry no number for it.
  const std::size_t mark = description.find(kMark);
  if (mark == std::string_view::npos) return std::nullopt;
  const char* begin = description.data() + mark + kMark.size();
  std::size_t place = 0;
  const auto read = std::from_chars(begin, description.data() + description.size(), place);
  if (read.ec != std::errc() || place == 0) return std::nullopt;
  return place - 1;
}

std::string MarkPlace(std::string_view statement, std::size_t character) {
  const std::u32string all = ToCodePoints(statement);
  const std::size_t place = std::min(character, all.size());
  // Only the line of the error is shown; a statement may have many.
  const std::size_t lineBreak = place == 0 ? std::u32string::npos : all.rfind(U'\n', place - 1);
  const std::size_t begin = lineBreak == std::u32string::npos ? 0 : lineBreak + 1;
  const std::size_t end = std::min(all.find(U'\n', place), all.size());
  const auto part = [&](std::size_t from, std::size_t to) {
    return Printable(ReplaceAll(FromCodePoints(all.substr(from, to - from)), "\r", ""));
  };
  // As wide as what stands before it is shown: wide letters and escapes count as the terminal shows them.
  return part(begin, end) + "\n" + std::string(DisplayWidth(part(begin, place)), ' ') + "^";
}

}  // namespace tavi::host
