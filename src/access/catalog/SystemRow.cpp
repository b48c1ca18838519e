#include "access/catalog/SystemRow.h"

#include "access/file/EngineError.h"

namespace tavi::access {

namespace {

std::size_t PositionOf(const Table& table, std::string_view column) {
  const std::optional<std::size_t> position = table.FindColumn(column);
  if (!position.has_value())
    RaiseDamage("the system table '" + table.Name() + "' has no column '" + std::string(column) + "'.");
  return *position;
}

}  // namespace

std::size_t SystemRow::Position(std::string_view column) const {
  return PositionOf(table_, column);
}

SystemRow& SystemRow::Set(std::string_view column, Value value) {
  values_[Position(column)] = std::move(value);
  return *this;
}

const Value& SystemRow::Get(std::string_view column) const {
  return values_[Position(column)];
}

std::int32_t SystemRow::Number(std::string_view column) const {
  const Value& value = Get(column);
  if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
  if (const auto* number = std::get_if<std::int16_t>(&value)) return *number;
  return 0;
}

std::string SystemRow::Text(std::string_view column) const {
  const auto* text = std::get_if<std::string>(&Get(column));
  return text == nullptr ? std::string() : *text;
}

Bytes SystemRow::Binary(std::string_view column) const {
  const auto* bytes = std::get_if<Bytes>(&Get(column));
  return bytes == nullptr ? Bytes() : *bytes;
}

std::vector<bool> WantedColumns(const Table& table, const std::vector<const char*>& columns) {
  std::vector<bool> wanted(table.Columns().size());
  for (const char* column : columns) wanted[PositionOf(table, column)] = true;
  return wanted;
}

}  // namespace tavi::access
