#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavi::host {

/// A comma-separated file with a header line, as spreadsheets write it: UTF-8 (windows-1252 when it is not), fields in
/// double quotes may hold commas, line breaks and doubled quotes. A semicolon or tab separates instead when the header
/// has no comma, or what a line "sep=;" before it names. Rows without contents are passed over.
class CsvFile {
 public:
  struct Row {
    std::size_t line = 0;
    std::vector<std::string> fields;
  };

  /// Raises InvalidArgument ("FILE:LINE: ...") when the file is missing or empty, a quote is not closed, a name stands
  /// twice in the header, or a row has more or fewer fields than the header.
  static CsvFile Read(const std::string& path);
  static CsvFile Parse(std::string_view bytes, const std::string& fileName);

  [[nodiscard]] const std::vector<Row>& Rows() const { return rows_; }
  /// The file's name, as messages begin with it.
  [[nodiscard]] const std::string& FileName() const { return fileName_; }
  /// The names of the header as written, in their order. A column without name and contents, which spreadsheets leave
  /// at the end, is left out.
  [[nodiscard]] std::vector<std::string> ColumnNames() const;
  [[nodiscard]] bool HasColumn(const std::string& name) const { return columns_.contains(name); }
  /// The trimmed field of a row; empty when the file lacks the column. Names are in lower case.
  [[nodiscard]] std::string Field(const Row& row, const std::string& column) const;
  /// Raises InvalidArgument for the header.
  [[noreturn]] void RefuseHeader(const std::string& reason) const;
  /// Raises InvalidArgument for a row.
  [[noreturn]] void Refuse(const Row& row, const std::string& reason) const;

 private:
  explicit CsvFile(std::string fileName) : fileName_(std::move(fileName)) {}
  void SetHeader(const Row& header);

  std::string fileName_;
  std::vector<std::string> header_;
  std::size_t headerLine_ = 1;  // a line that names the separator may stand before it
  std::map<std::string, std::size_t> columns_;
  std::vector<Row> rows_;
};

/// The columns of a file that are none of `known`. Raises InvalidArgument ("FILE:1: ..."), which suggests the nearest
/// known name for each, when there are any and they are not to be passed over.
std::vector<std::string> UnknownColumns(const CsvFile& file, const std::vector<std::string>& known, bool passOver);

}  // namespace tavi::host

/// Cells of a comma-separated file that hold more than a text. All raise InvalidArgument ("FILE:LINE: ...") for what
/// they cannot read.
namespace tavi::host {

/// A whole number above 0 of at most nine figures; nothing for an empty cell.
std::optional<std::int32_t> NumberInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column);
/// A governing body's number without leading zeros, as its own list has them; empty for an empty cell.
std::string NationalNumberInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column);
/// y or n (yes, no, true, false, 1, 0 too); nothing for an empty cell.
std::optional<bool> YesOrNoInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column);
/// A day written yyyy-mm-dd or dd/mm/yyyy as yyyy-mm-dd; empty for an empty cell.
std::string DayInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column);

}  // namespace tavi::host
