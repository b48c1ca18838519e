#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tavi::host {

/// How results are written: aligned columns for people, tab-separated lines for other programs, comma-separated ones
/// for spreadsheets, JSON where a program reads it.
enum class OutputFormat { Table, Tabs, Csv, JsonText };

/// A number with a fixed count of decimals.
struct Decimals {
  double value = 0.0;
  int places = 2;
};

/// One cell; std::monostate is "nothing" (empty, or null in JSON).
using Cell = std::variant<std::monostate, bool, std::int64_t, Decimals, double, std::string>;

/// Rows under column names.
class Table {
 public:
  explicit Table(std::vector<std::string> columns) : columns_(std::move(columns)) {}

  /// A row has one cell for each column.
  void Add(std::vector<Cell> row);
  [[nodiscard]] std::size_t RowCount() const { return rows_.size(); }

  /// Writes the table. Table: header, line, columns aligned by what a terminal shows, numbers to the right. Tabs:
  /// header and rows; tab, line feed, carriage return and backslash in texts are written \t \n \r \\. In both, what
  /// steers a terminal is written as Printable does. Csv: header and rows, each field as CsvField writes it. Json: an
  /// array of objects, as PrintableJson writes them. Decimals
  /// are rounded as their 15 significant digits say, half-way to the even last digit.
  void Write(std::ostream& out, OutputFormat format) const;
  /// How many column names and texts are no formulas only because CsvField puts something before them.
  [[nodiscard]] std::size_t FormulaCount() const;
  /// The JSON array alone, for use inside a larger document.
  [[nodiscard]] std::string Json() const;

 private:
  void WriteAligned(std::ostream& out) const;
  void WriteTabs(std::ostream& out) const;
  void WriteCsv(std::ostream& out) const;

  std::vector<std::string> columns_;
  std::vector<std::vector<Cell>> rows_;
};

/// How many columns a terminal uses for a text: combining marks none, East Asian wide characters two.
std::size_t DisplayWidth(const std::string& text);
/// A text with control characters shown as escapes (\x1b), and so are those that turn the direction of what follows
/// (\u202e), so that stored data can neither steer a terminal nor be shown as something else.
std::string Printable(const std::string& text);
/// The same for a message of several lines (CR LF or LF between them), which stay lines.
std::string PrintableLines(const std::string& message);
/// A JSON document with the characters that Printable shows as escapes as those of JSON: other text, the same values.
std::string PrintableJson(const std::string& json);

/// A text as a field of comma-separated output: between quotes where it needs them, with its line breaks and tabs;
/// other characters that steer a terminal are written as Printable does. What a spreadsheet would run as a formula
/// (IsFormula) has an apostrophe before it, so that it is shown instead.
std::string CsvField(const std::string& text);

/// True for a text that spreadsheets take for a formula: it begins, after any blanks, with = + - @ or a wide form of
/// these, or with a tab or a line break.
bool IsFormula(const std::string& text);

}  // namespace tavi::host
