#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/input/Csv.h"

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
