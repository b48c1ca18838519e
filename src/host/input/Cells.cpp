#include "host/input/Cells.h"

#include <algorithm>

#include "host/text/Figures.h"
#include "platform/values/Date.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi::host {

std::optional<std::int32_t> NumberInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = file.Field(row, column);
  if (text.empty()) return std::nullopt;
  if (!IsFigures(text) || text.size() > kLongestWholeNumber || std::stoi(text) == 0) {
    file.Refuse(row, column + " is \"" + text + "\"; expected a whole number above 0");
  }
  return std::stoi(text);
}

std::string NationalNumberInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = file.Field(row, column);
  if (text.empty()) return {};
  if (!IsFigures(text)) file.Refuse(row, column + " is \"" + text + "\"; expected figures only");
  return WithoutLeadingZeros(text);
}

std::optional<bool> YesOrNoInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = LowerCase(file.Field(row, column));
  if (text.empty()) return std::nullopt;
  for (const char* yes : {"y", "yes", "true", "1", "-1"}) {
    if (text == yes) return true;
  }
  for (const char* no : {"n", "no", "false", "0"}) {
    if (text == no) return false;
  }
  file.Refuse(row, column + " is \"" + text + "\"; expected y or n");
}

std::string DayInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = file.Field(row, column);
  if (text.empty()) return {};
  if (const std::optional<Date> date = Date::FromIso(text)) return date->DayOnly().Iso();
  const std::vector<std::string> parts = Split(text, '/');
  const bool figures = parts.size() == 3 && parts[2].size() == 4 &&
                       std::ranges::all_of(parts, [](const auto& part) { return IsFigures(part) && part.size() <= 4; });
  if (figures) {
    try {
      return Date::FromCivil(std::stoi(parts[2]), std::stoi(parts[1]), std::stoi(parts[0])).Iso();
    } catch (const Error&) {
      file.Refuse(row, column + " is \"" + text + "\", which is no day of the calendar");
    }
  }
  file.Refuse(row, column + " is \"" + text + "\"; expected yyyy-mm-dd or dd/mm/yyyy");
}

}  // namespace tavi::host
