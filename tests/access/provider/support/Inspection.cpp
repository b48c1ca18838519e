#include "access/provider/support/Inspection.h"

#include <array>
#include <span>

#include "access/file/Bytes.h"
#include "access/file/Pager.h"
#include "host/dump/DatabaseDump.h"

namespace tavi::access::test {

namespace {

std::uint64_t Add(std::uint64_t digest, const std::string& text) {
  return Checksum(digest, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

/// Long texts and bytes as they are: written for people they would take most of the time of the tests.
std::uint64_t AddValue(std::uint64_t digest, const Value& value) {
  const std::array<std::uint8_t, 1> type{static_cast<std::uint8_t>(value.index())};
  digest = Checksum(digest, type);
  if (const auto* text = std::get_if<std::string>(&value)) return Add(digest, *text);
  if (const auto* bytes = std::get_if<Bytes>(&value)) return Checksum(digest, *bytes);
  return Add(digest, host::TsvText(value));
}

std::uint64_t AddTable(std::uint64_t digest, Table& table) {
  digest = Add(digest, table.Name());
  for (const Column& column : table.Columns()) {
    digest = Add(digest, column.definition.name + ":" + std::to_string(static_cast<int>(column.definition.type)));
  }
  for (const Index& index : table.Indexes()) {
    digest = Add(digest, index.name);
    for (const std::size_t column : index.columns) digest = Add(digest, std::to_string(column));
  }
  // A sum, because the places of rows may differ.
  std::uint64_t rows = 0;
  for (auto row = table.Next(std::nullopt); row.has_value(); row = table.Next(row)) {
    std::uint64_t values = 0;
    for (const Value& value : table.Read(*row)) values = AddValue(values, value);
    rows += values;
  }
  return Add(digest, std::to_string(rows));
}

std::string Printed(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return '"' + *text + '"';
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "1" : "0";
  return IsNull(value) ? "" : host::TsvText(value);
}

std::string PrintedRow(const RowValues& row) {
  std::string text;
  for (const Value& value : row) text += Printed(value) + ",";
  text.pop_back();
  return text;
}

template <typename Visit>
void ForEachTable(Database& database, Visit visit) {
  const ReadStatement statement(database.GetPager());
  for (const CatalogEntry& entry : database.Tables()) {
    if (!entry.isSystem) visit(*database.OpenTable(entry.name));
  }
}

}  // namespace

std::string Abridged(const std::string& line) {
  constexpr std::size_t kShown = 60;
  if (line.size() <= kShown) return line;
  return line.substr(0, kShown) + "... " + std::to_string(line.size()) + " " + std::to_string(Add(0, line));
}

std::uint64_t DigestOf(Database& database) {
  std::uint64_t digest = 1;
  ForEachTable(database, [&](Table& table) { digest = AddTable(digest, table); });
  return digest;
}

PrintedRows PrintTables(Database& database) {
  PrintedRows tables;
  ForEachTable(database, [&](Table& table) {
    auto& rows = tables[table.Name()];
    for (auto row = table.Next(std::nullopt); row.has_value(); row = table.Next(row)) {
      rows.insert(Abridged(PrintedRow(table.Read(*row))));
    }
  });
  return tables;
}

}  // namespace tavi::access::test
