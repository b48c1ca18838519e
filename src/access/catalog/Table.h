#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "access/index/BTree.h"
#include "access/index/KeyEncoder.h"
#include "access/table/TableDefinition.h"
#include "access/table/TableRows.h"

namespace tavi::access {

/// A column as statements see it. Its position in Table::Columns() is the position of its value in RowValues.
struct Column {
  ColumnDefinition definition;
  bool required = false;
  bool allowZeroLength = true;    ///< false only when the file says so expressly
  std::string defaultExpression;  ///< expression text, empty for none
};

/// An index as statements see it: one for each physical index.
struct Index {
  std::string name;  ///< of the first logical index on it
  RealIndexDefinition definition;
  std::vector<std::size_t> columns;  ///< positions in Table::Columns(), key order
  std::vector<bool> ascending;
  bool primaryKey = false;
  IndexStatistics statistics;
};

/// A table with its columns, rows, indexes, required columns and relationships: what SQL statements work on. Insert,
/// Update and Delete keep rows and all indexes in step; they ask every index, required column and relationship first
/// and change pages only when all agree, so a refused change leaves no trace.
class Table {
 public:
  virtual ~Table() = default;

  [[nodiscard]] virtual const std::string& Name() const = 0;
  [[nodiscard]] virtual bool IsSystem() const = 0;
  /// In display order (ordinal, then name). This order is that of all RowValues.
  [[nodiscard]] virtual const std::vector<Column>& Columns() const = 0;
  /// Position of a column; nothing when there is none of that name (ignoring case).
  [[nodiscard]] virtual std::optional<std::size_t> FindColumn(std::string_view name) const = 0;
  [[nodiscard]] virtual const std::vector<Index>& Indexes() const = 0;
  [[nodiscard]] virtual const TableDefinition& Definition() const = 0;
  /// As the definition states it; may differ from the truth in files of other programs.
  [[nodiscard]] virtual std::uint32_t RowCount() = 0;

  [[nodiscard]] virtual RowValues Read(RowPointer row) = 0;
  [[nodiscard]] virtual RowValues Read(RowPointer row, const std::vector<bool>& wanted) = 0;
  /// Into `values`, as TableRows::Read.
  virtual void Read(RowPointer row, const std::vector<bool>& wanted, RowValues& values) = 0;
  [[nodiscard]] virtual bool Exists(RowPointer row) = 0;
  /// The number of live rows, counted.
  [[nodiscard]] virtual std::int64_t CountRows() = 0;
  /// The next live row in page order; `after` none: the first.
  [[nodiscard]] virtual std::optional<RowPointer> Next(std::optional<RowPointer> after) = 0;
  /// All live rows in page order, however damaged the table is (see TableRows::WalkPastDamage).
  virtual void WalkPastDamage(const std::function<void(RowPointer)>& visit,
                              const std::function<void(RowPointer, const Error&)>& damaged) = 0;
  /// The tree of an index, and the maker of its keys, by position in Indexes().
  [[nodiscard]] virtual BTree& Tree(std::size_t index) = 0;
  [[nodiscard]] virtual const KeyEncoder& Encoder(std::size_t index) = 0;
  /// True when what a key is looked for under is where it stands: the keys of the index can be made here, and stand as
  /// they are made here (see HasOwnKeys in KeyLookup.h). Nothing may be looked for in the tree of another index. A
  /// change of a row makes such an index anew first, where its keys can be made.
  [[nodiscard]] virtual bool CanSearch(std::size_t index) = 0;

  /// Adds a row. Values are converted to their columns' types; an automatic number whose value is null gets the next
  /// one, and `row` becomes the values as they are stored. Defaults are the caller's business. Raises ProviderFailure
  /// for a duplicate key, ProviderIntegrity for a null in a required column or key, an empty text where the column
  /// refuses it, or a missing related row; the errors of ConvertForColumn and TableRows::Insert. System tables are not
  /// refused.
  virtual RowPointer Insert(RowValues& row) = 0;
  /// Replaces a row's values; rows of other tables follow a changed key where the relationship says so. Raises like
  /// Insert; also ProviderIntegrity for the change of an automatic number, and for a key that rows of other tables
  /// refer to. Writes nothing when no value changes. After an error in a cascade the statement must be rolled back.
  virtual void Update(RowPointer row, RowValues values) = 0;
  /// Removes a row, and the rows that refer to it where the relationship says so. Raises ProviderIntegrity when others
  /// refer to it.
  virtual void Delete(RowPointer row) = 0;
};

}  // namespace tavi::access
