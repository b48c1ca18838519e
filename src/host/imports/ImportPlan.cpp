#include "host/imports/ImportPlan.h"

#include <algorithm>

#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"
#include "store/cDatabase.h"

namespace tavi::host {

std::size_t ImportPlan::Added() const {
  return static_cast<std::size_t>(
      std::ranges::count_if(changes, [](const RecordChange& change) { return change.isNew; }));
}

std::string PlaceInFile(const std::string& fileName, std::size_t line) {
  return fileName + ":" + std::to_string(line);
}

// Every refusal of an import names the line, which the person looks at in a spreadsheet.
void RefuseImport(const std::string& fileName, std::size_t line, const std::string& reason) {
  throw Error(ErrorNumber::InvalidArgument, "tavi", PlaceInFile(fileName, line) + ": " + reason);
}

// Asked of the file and not of the layout, since an older file may have shorter columns.
ColumnWidths::ColumnWidths(cDatabase& store, const std::string& table) {
  const std::unique_ptr<ado::Recordset> columns = store.OpenSchema(ado::SchemaKind::Columns);
  for (; !columns->AtEnd(); columns->MoveNext()) {
    const Value width = columns->Get("CHARACTER_MAXIMUM_LENGTH");
    if (IsNull(width) || !EqualIgnoringCase(ToText(columns->Get("TABLE_NAME")), table)) continue;
    widths_[LowerCase(ToText(columns->Get("COLUMN_NAME")))] = ToInt32(width);
  }
}

void ColumnWidths::Require(const std::string& where, const std::string& column, const std::string& text) const {
  const auto width = widths_.find(LowerCase(column));
  // A column without a limit, such as a memo.
  if (width == widths_.end() || width->second <= 0) return;
  // What counts is the text as it is stored, in which some characters take more than one.
  const std::string stored = cDatabase::StoredText(text);
  if (TextLength(stored) <= static_cast<std::size_t>(width->second)) return;
  throw Error(ErrorNumber::InvalidArgument, "tavi",
              where + ": " + column + " has " + std::to_string(TextLength(stored)) + " characters; expected at most " +
                  std::to_string(width->second));
}

}  // namespace tavi::host
