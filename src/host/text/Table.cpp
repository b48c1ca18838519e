#include "host/text/Table.h"

#include <fmt/format.h>
#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <string_view>

#include "host/json/Json.h"
#include "platform/values/Convert.h"
#include "platform/values/Text.h"

// Results in four forms. What they hold may have been typed by anybody, so that each form has its guard: for terminals
// and lines everything that steers them is shown as an escape, spreadsheets get no formulas, JSON its own escapes. The
// guard is applied when a cell is written; the table holds values as they are, and JSON gives them as they are.
//
// People's tables need all rows before the first is written, for the widths of the columns.
namespace tavi::host {
namespace {

/// The plain text of a cell.
/// Doubles as people read numbers, with 15 digits at most; truth as a word, which needs no column of its own.
std::string CellText(const Cell& cell) {
  struct Writer {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(bool value) const { return value ? "yes" : "no"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(const Decimals& number) const {
      return fmt::format("{:.{}f}", RoundDecimalHalfEven(number.value, number.places), number.places);
    }
    std::string operator()(double value) const { return NumberText(value); }
    std::string operator()(const std::string& value) const { return value; }
  };
  return std::visit(Writer{}, cell);
}

/// Decimals are rounded here, too, so that all forms of one list show the same figures.
Json CellJson(const Cell& cell) {
  struct Writer {
    Json operator()(std::monostate) const { return nullptr; }
    Json operator()(bool value) const { return value; }
    Json operator()(std::int64_t value) const { return value; }
    Json operator()(const Decimals& number) const { return RoundDecimalHalfEven(number.value, number.places); }
    Json operator()(double value) const { return value; }
    Json operator()(const std::string& value) const { return value; }
  };
  return std::visit(Writer{}, cell);
}

bool IsNumber(const Cell& cell) {
  return std::holds_alternative<std::int64_t>(cell) || std::holds_alternative<Decimals>(cell) ||
         std::holds_alternative<double>(cell);
}

/// A backslash is doubled, so that a text can be told from the escape of a character.
std::string TabText(const Cell& cell) {
  return Printable(ReplaceAll(CellText(cell), "\\", "\\\\"));
}

/// Columns' names are texts, too: a statement can give them any.
/// Only texts may be formulas: a number with a sign is a number.
bool IsFormulaCell(const Cell& cell) {
  const auto* text = std::get_if<std::string>(&cell);
  return text != nullptr && IsFormula(*text);
}

std::string CsvText(const Cell& cell) {
  const auto* text = std::get_if<std::string>(&cell);
  return text == nullptr ? CellText(cell) : CsvField(*text);
}

/// Header and rows, with a separator between the cells of each.
template <typename Text>
void WriteLines(std::ostream& out, const char* separator, const std::vector<std::string>& header,
                const std::vector<std::vector<Cell>>& rows, const Text& text) {
  // The header's cells are texts and become cells on the way.
  const auto writeLine = [&](const auto& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) out << (i == 0 ? "" : separator) << text(cells[i]);
    out << '\n';
  };
  writeLine(header);
  for (const std::vector<Cell>& row : rows) writeLine(row);
}

/// Characters that make a terminal, an editor or a spreadsheet show what follows in another order or on another line.
bool ReordersText(char32_t c) {
  return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) || c == 0x2028 || c == 0x2029;
}

bool IsControlCharacter(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

// East Asian letters and pictures, which terminals show in two columns.
bool IsWide(char32_t c) {
  return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) || (c >= 0xAC00 && c <= 0xD7A3) ||
         (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFE30 && c <= 0xFE6F) || (c >= 0xFF00 && c <= 0xFF60) ||
         (c >= 0xFFE0 && c <= 0xFFE6) || (c >= 0x1F300 && c <= 0x1FAFF) || (c >= 0x20000 && c <= 0x3FFFD);
}

// Marks that are put on the letter before them, and characters without any width.
bool IsCombining(char32_t c) {
  return (c >= 0x0300 && c <= 0x036F) || (c >= 0x1AB0 && c <= 0x1AFF) || (c >= 0x20D0 && c <= 0x20FF) ||
         (c >= 0xFE00 && c <= 0xFE0F) || c == 0x200B || c == 0x200D;
}

}  // namespace

// Terminals differ in rare characters; what is wrong by a column here only shifts a line.
std::size_t DisplayWidth(const std::string& text) {
  std::size_t width = 0;
  for (const char32_t c : ToCodePoints(text)) width += IsCombining(c) ? 0U : IsWide(c) ? 2U : 1U;
  return width;
}

std::string Printable(const std::string& text) {
  std::string shown;
  for (const char32_t c : ToCodePoints(text)) {
    // Those with an escape that everybody knows; then the rest of what steers a terminal by its number.
    if (c == U'\n') {
      shown += "\\n";
    } else if (c == U'\r') {
      shown += "\\r";
    } else if (c == U'\t') {
      shown += "\\t";
    } else if (IsControlCharacter(c)) {
      shown += fmt::format("\\x{:02x}", static_cast<unsigned>(c));
    } else if (ReordersText(c)) {
      shown += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    } else {
      shown += FromCodePoints(std::u32string(1, c));
    }
  }
  return shown;
}

// A document is written first and made harmless then: outside of texts there is nothing of the kind but line feeds.
std::string PrintableJson(const std::string& json) {
  std::string shown;
  for (const char32_t c : ToCodePoints(json)) {
    const bool isLayout = c == U'\n';  // between values; in texts it is an escape already
    if ((IsControlCharacter(c) && !isLayout) || ReordersText(c)) {
      shown += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    } else {
      shown += FromCodePoints(std::u32string(1, c));
    }
  }
  return shown;
}

std::string PrintableLines(const std::string& message) {
  std::string shown;
  for (const std::string& line : Split(ReplaceAll(message, "\r\n", "\n"), '\n')) {
    // Later lines are indented, so that a text in a message cannot pass for a message of its own.
    if (!line.empty()) shown += (shown.empty() ? "" : "\n  ") + Printable(line);
  }
  return shown;
}

void Table::Add(std::vector<Cell> row) {
  if (row.size() != columns_.size()) throw std::logic_error("a row of a table must have a cell for each column");
  rows_.push_back(std::move(row));
}

void Table::Write(std::ostream& out, OutputFormat format) const {
  // Every form ends with a line feed.
  if (format == OutputFormat::JsonText) {
    out << Json() << '\n';
  } else if (format == OutputFormat::Tabs) {
    WriteTabs(out);
  } else if (format == OutputFormat::Csv) {
    WriteCsv(out);
  } else {
    WriteAligned(out);
  }
}

std::string Table::Json() const {
  host::Json rows = host::Json::Array();
  for (const std::vector<Cell>& row : rows_) {
    host::Json object = host::Json::Object();
    for (std::size_t i = 0; i < columns_.size(); ++i) object[columns_[i]] = CellJson(row[i]);
    rows.Add(std::move(object));
  }
  return PrintableJson(rows.Indented());
}

void Table::WriteTabs(std::ostream& out) const {
  WriteLines(out, "\t", columns_, rows_, TabText);
}

void Table::WriteCsv(std::ostream& out) const {
  WriteLines(out, ",", columns_, rows_, CsvText);
}

std::size_t Table::FormulaCount() const {
  auto count = std::ranges::count_if(columns_, IsFormula);
  for (const std::vector<Cell>& row : rows_) count += std::ranges::count_if(row, IsFormulaCell);
  return static_cast<std::size_t>(count);
}

void Table::WriteAligned(std::ostream& out) const {
  std::vector<std::size_t> widths;
  std::vector<bool> numeric(columns_.size(), true);
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    widths.push_back(DisplayWidth(Printable(columns_[i])));
    // Numbers stand to the right in a column of nothing else; one without any value is no column of numbers.
    bool any = false;
    for (const std::vector<Cell>& row : rows_) {
      widths[i] = std::max(widths[i], DisplayWidth(Printable(CellText(row[i]))));
      any = any || IsNumber(row[i]);
      numeric[i] = numeric[i] && (IsNumber(row[i]) || std::holds_alternative<std::monostate>(row[i]));
    }
    numeric[i] = numeric[i] && any;
  }
  const auto writeLine = [&](const std::vector<std::string>& texts) {
    std::string line;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      const std::string padding(widths[i] - DisplayWidth(texts[i]), ' ');
      line += (i == 0 ? "" : "  ") + (numeric[i] ? padding + texts[i] : texts[i] + padding);
    }
    // No blanks at the end, which would be copied and compared with.
    out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
  };
  std::vector<std::string> header;
  for (const std::string& name : columns_) header.push_back(Printable(name));
  writeLine(header);
  // A line below the header, as long as the columns are wide.
  std::vector<std::string> rule;
  for (const std::size_t width : widths) rule.emplace_back(width, '-');
  writeLine(rule);
  for (const std::vector<Cell>& row : rows_) {
    std::vector<std::string> texts;
    for (const Cell& cell : row) texts.push_back(Printable(CellText(cell)));
    writeLine(texts);
  }
}

namespace {

// The wide forms are those of East Asian keyboards, which spreadsheets take for the plain ones.
constexpr std::u32string_view kFormulaBegins = U"=+-@\uFF1D\uFF0B\uFF0D\uFF20";
constexpr std::u32string_view kLayout = U"\t\r\n";

}  // namespace

bool IsFormula(const std::string& text) {
  for (const char32_t c : ToCodePoints(text)) {
    // The first character that is no blank decides.
    if (c != U' ')
      return kFormulaBegins.find(c) != std::u32string_view::npos || kLayout.find(c) != std::u32string_view::npos;
  }
  return false;
}

// A quote within quotes is doubled. Line breaks and tabs stay as they are, since spreadsheets take them between quotes.
std::string CsvField(const std::string& text) {
  std::string field = IsFormula(text) ? "'" : "";
  bool needsQuotes = text.starts_with(' ') || text.ends_with(' ');
  for (const char32_t c : ToCodePoints(text)) {
    const std::string character = FromCodePoints(std::u32string(1, c));
    const bool isLayout = kLayout.find(c) != std::u32string_view::npos;
    // Blanks at the ends too, which many readers would drop.
    needsQuotes = needsQuotes || isLayout || c == U',' || c == U'"';
    field += c == U'"' ? "\"\"" : isLayout ? character : Printable(character);
  }
  return needsQuotes ? "\"" + field + "\"" : field;
}

}  // namespace tavi::host
