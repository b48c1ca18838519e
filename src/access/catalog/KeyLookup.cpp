// Rows by their keys, and whether an index can be trusted to find them.
//
// A look-up makes the key's bytes as far as values are given and walks the entries from there as long as they begin
// with them: what it costs is the way down the tree and the entries found. It goes wrong without a word where the index
// holds other bytes for the same values, so whoever looks asks Table::CanSearch first, and that comes to HasOwnKeys.
// Only texts and descending decimals can have other bytes: an index of other columns is trusted unseen. For one on such
// columns the rows of its entries are read, but of a single text without accents and marks only every 64th.
#include "access/catalog/KeyLookup.h"

#include <algorithm>

#include "access/file/Format.h"

namespace tavi::access {

std::vector<RowPointer> RowsWithKey(Table& table, std::size_t index, const std::vector<Value>& values) {
  std::vector<RowPointer> rows;
  const std::optional<IndexKey> prefix = table.Encoder(index).PrefixKey(values);
  // A value that the column cannot hold is in no row.
  if (!prefix.has_value()) return rows;
  for (auto cursor = table.Tree(index).SeekFirst(prefix); cursor->Current() != nullptr; cursor->Next()) {
    const IndexKey& key = cursor->Current()->key;
    if (key.size() < prefix->size() || !std::equal(prefix->begin(), prefix->end(), key.begin())) break;
    rows.push_back(cursor->Current()->row);
  }
  return rows;
}

// Without an index the values are compared as they are, so texts must agree in case as well.
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

namespace {

// Of plain texts one in so many is looked at: a file whose keys are all made in another way shows that at once.
constexpr std::size_t kEntriesPerSample = 64;

/// Ascending decimals and all other types have one form that every program writes.
bool ColumnCanDiffer(const Table& table, const Index& index, std::size_t part) {
  const ColumnType type = table.Columns()[index.columns[part]].definition.type;
  return IsText(type) || (type == ColumnType::Numeric && !index.ascending[part]);
}

bool IndexCanDiffer(const Table& table, const Index& index) {
  for (std::size_t part = 0; part < index.columns.size(); ++part)
    if (ColumnCanDiffer(table, index, part)) return true;
  return false;
}

/// True for the key of a single text without accents and marks, or of a null: there is one way to make it.
bool IsPlainTextKey(const IndexKey& key) {
  if (key.size() < 2) return true;
  return key[key.size() - 2] == format::key::kTextPartEnd && key.back() == format::key::kTextEnd;
}

/// The entries of one index, compared with the keys of their rows.
class KeyComparison {
 public:
  KeyComparison(Table& table, std::size_t index)
      : table_(table), index_(index), encoder_(table.Encoder(index)), wanted_(table.Columns().size()) {
    const Index& definition = table.Indexes()[index];
    for (const std::size_t column : definition.columns) wanted_[column] = true;
    isSingleText_ = definition.columns.size() == 1 && definition.ascending[0] &&
                    IsText(table.Columns()[definition.columns[0]].definition.type);
  }

  bool Agrees() {
    IndexEntry before;
    std::size_t count = 0;
    for (const auto cursor = table_.Tree(index_).SeekFirst(std::nullopt); cursor->Current() != nullptr;
         cursor->Next(), ++count) {
      const IndexEntry& entry = *cursor->Current();
      // Out of order a search could end before the entry that it looks for.
      if (count > 0 && entry <= before) return false;
      // An entry whose row is not there says nothing about keys: it is damage that a check reports.
      const bool isSkipped = isSingleText_ && IsPlainTextKey(entry.key) && count % kEntriesPerSample != 0;
      if (!isSkipped && table_.Exists(entry.row) && encoder_.RowKey(table_.Read(entry.row, wanted_)) != entry.key)
        return false;
      before = entry;
    }
    return true;
  }

 private:
  Table& table_;
  std::size_t index_;
  const KeyEncoder& encoder_;
  std::vector<bool> wanted_;
  bool isSingleText_ = false;
};

bool IsAscii(const Value& value) {
  const auto* text = std::get_if<std::string>(&value);
  return text == nullptr ||
         std::ranges::all_of(*text, [](char character) { return static_cast<unsigned char>(character) < 0x80U; });
}

}  // namespace

bool HasOwnKeys(Table& table, std::size_t index) {
  if (!IndexCanDiffer(table, table.Indexes()[index])) return true;
  try {
    return KeyComparison(table, index).Agrees();
  } catch (const Error&) {
    return true;
  }
}

bool KeyCanDiffer(const Table& table, std::size_t index, const RowValues& row) {
  const Index& definition = table.Indexes()[index];
  for (std::size_t part = 0; part < definition.columns.size(); ++part) {
    const Value& value = row[definition.columns[part]];
    if (ColumnCanDiffer(table, definition, part) && (std::holds_alternative<Decimal>(value) || !IsAscii(value)))
      return true;
  }
  return false;
}

}  // namespace tavi::access
