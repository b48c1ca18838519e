#include "access/catalog/KeyLookup.h"

#include <algorithm>

namespace tavi::access {

std::vector<RowPointer> RowsWithKey(Table& table, std::size_t index, const std::vector<Value>& values) {
  std::vector<RowPointer> rows;
  const std::optional<IndexKey> prefix = table.Encoder(index).PrefixKey(values);
  if (!prefix.has_value()) return rows;
  for (auto cursor = table.Tree(index).SeekFirst(prefix); cursor->Current() != nullptr; cursor->Next()) {
    const IndexKey& key = cursor->Current()->key;
    if (key.size() < prefix->size() || !std::equal(prefix->begin(), prefix->end(), key.begin())) break;
    rows.push_back(cursor->Current()->row);
  }
  return rows;
}

std::vector<RowPointer> RowsWithValue(Table& table, std::string_view column, const Value& value) {
  const std::optional<std::size_t> position = table.FindColumn(column);
  if (!position.has_value()) return {};
  const std::vector<Index>& indexes = table.Indexes();
  for (std::size_t i = 0; i < indexes.size(); ++i)
    if (!indexes[i].columns.empty() && indexes[i].columns[0] == *position && table.CanSearch(i))
      return RowsWithKey(table, i, {value});
  std::vector<bool> wanted(table.Columns().size());
  wanted[*position] = true;
  std::vector<RowPointer> rows;
  for (auto row = table.Next(std::nullopt); row.has_value(); row = table.Next(row))
    if (table.Read(*row, wanted)[*position] == value) rows.push_back(*row);
  return rows;
}

}  // namespace tavi::access
