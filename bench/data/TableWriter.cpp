#include "data/TableWriter.h"

#include <stdexcept>

#include "platform/values/Convert.h"

namespace tavi::bench {
namespace {

/// Rows of one statement, whose changed pages are in memory until its end.
constexpr int kRowsAtATime = 50'000;

std::string InsertText(const std::string& table, const std::vector<std::string>& columns) {
  std::string names;
  std::string marks;
  for (const std::string& column : columns) {
    names += (names.empty() ? "" : ", ") + column;
    marks += marks.empty() ? "?" : ", ?";
  }
  return "Insert Into " + table + " (" + names + ") Values (" + marks + ")";
}

void Bind(SqliteStatement& statement, int parameter, const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    statement.Bind(parameter, *text);
  } else if (const auto* number = std::get_if<std::int32_t>(&value)) {
    statement.Bind(parameter, std::int64_t{*number});
  } else if (const auto* truth = std::get_if<bool>(&value)) {
    statement.Bind(parameter, std::int64_t{*truth ? -1 : 0});
  } else {
    statement.Bind(parameter, std::holds_alternative<Date>(value) ? std::get<Date>(value).days : ToDouble(value));
  }
}

}  // namespace

TableWriter::TableWriter(access::Database& ours, SqliteFile& sqlite, const std::string& table,
                         const std::vector<std::string>& columns)
    : ours_(ours), sqlite_(sqlite), table_(table), insert_(sqlite.Handle(), InsertText(table, columns)) {
  Begin();
  for (const std::string& column : columns) {
    const auto place = rows_->FindColumn(column);
    if (!place) throw std::runtime_error("The table " + table + " has no column " + column + ".");
    places_.push_back(*place);
  }
}

TableWriter::~TableWriter() = default;

void TableWriter::Begin() {
  statement_ = std::make_unique<access::WriteStatement>(ours_.GetPager());
  rows_ = ours_.OpenTable(table_);
  sqlite_.Run("BEGIN");
}

void TableWriter::Finish() {
  statement_->Commit();
  statement_.reset();
  sqlite_.Run("COMMIT");
}

void TableWriter::Add(const std::vector<Value>& values) {
  if (++added_ % kRowsAtATime == 0) {
    Finish();
    Begin();
  }
  access::RowValues row(rows_->Columns().size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    row[places_[i]] = values[i];
    Bind(insert_, static_cast<int>(i) + 1, values[i]);
  }
  rows_->Insert(row);
  insert_.Run();
}

}  // namespace tavi::bench
