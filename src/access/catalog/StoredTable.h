#pragma once

#include <set>

#include "access/catalog/PropertyBlob.h"
#include "access/catalog/Table.h"
#include "access/catalog/TableIndexes.h"

namespace tavi::access {

class StoredTable;

/// Finds the other table of a relationship.
class RelatedTables {
 public:
  virtual ~RelatedTables() = default;
  /// The table whose definition begins on a page. Raises ProviderFailure when there is none.
  [[nodiscard]] virtual std::shared_ptr<StoredTable> TableAt(PageNumber page) = 0;
};

/// A table of the file.
class StoredTable final : public Table {
 public:
  /// `related` is asked when a change concerns a relationship; it may be null for a table without any.
  StoredTable(Pager& pager, std::string name, bool isSystem, TableDefinition definition, const PropertyBlob& properties,
              RelatedTables* related);
  StoredTable(const StoredTable&) = delete;
  StoredTable& operator=(const StoredTable&) = delete;

  [[nodiscard]] const std::string& Name() const override { return name_; }
  [[nodiscard]] bool IsSystem() const override { return isSystem_; }
  [[nodiscard]] const std::vector<Column>& Columns() const override { return columns_; }
  [[nodiscard]] std::optional<std::size_t> FindColumn(std::string_view name) const override;
  [[nodiscard]] const std::vector<Index>& Indexes() const override { return indexes_.Indexes(); }
  [[nodiscard]] const TableDefinition& Definition() const override { return definition_; }
  [[nodiscard]] std::uint32_t RowCount() override;

  [[nodiscard]] RowValues Read(RowPointer row) override { return rows_.Read(row); }
  [[nodiscard]] RowValues Read(RowPointer row, const std::vector<bool>& wanted) override {
    return rows_.Read(row, wanted);
  }
  void Read(RowPointer row, const std::vector<bool>& wanted, RowValues& values) override {
    rows_.Read(row, wanted, values);
  }
  [[nodiscard]] std::int64_t CountRows() override { return rows_.Count(); }
  [[nodiscard]] bool Exists(RowPointer row) override { return rows_.Exists(row); }
  [[nodiscard]] std::optional<RowPointer> Next(std::optional<RowPointer> after) override { return rows_.Next(after); }
  void WalkPastDamage(const std::function<void(RowPointer)>& visit,
                      const std::function<void(RowPointer, const Error&)>& damaged) override {
    rows_.WalkPastDamage(visit, damaged);
  }
  [[nodiscard]] BTree& Tree(std::size_t index) override { return indexes_.Tree(index); }
  [[nodiscard]] const KeyEncoder& Encoder(std::size_t index) override { return indexes_.Encoder(index); }
  [[nodiscard]] bool CanSearch(std::size_t index) override;
  /// Makes an index anew that cannot be searched as it is. Raises ProviderFailure when its keys cannot be made here,
  /// and what FillIndex raises.
  void MakeSearchable(std::size_t index);

  RowPointer Insert(RowValues& row) override;
  void Update(RowPointer row, RowValues values) override;
  void Delete(RowPointer row) override;

  /// As Update, told how many cascades it is away from the change that was asked for.
  void UpdateCascading(RowPointer row, RowValues values, int depth);
  /// Deletes a row without asking relationships.
  void DeleteAlone(RowPointer row);

  [[nodiscard]] TableRows& Rows() { return rows_; }

 private:
  void CheckSize(const RowValues& values) const;
  void ConvertValues(RowValues& values) const;
  /// Required and zero-length rules, for the columns that differ from `before` (all when it is null).
  void CheckColumns(const RowValues* before, const RowValues& after) const;
  void CheckAutoNumbersKept(const RowValues& before, RowValues& after) const;
  /// Readies the indexes that a change of a row concerns (null: there is none before, or after).
  void MakeChangedSearchable(const RowValues* before, const RowValues* after);

  Pager* pager_;
  std::string name_;
  bool isSystem_;
  TableDefinition definition_;
  std::vector<Column> columns_;
  TableRows rows_;
  TableIndexes indexes_;
  std::vector<std::optional<bool>> searchable_;  ///< by index, once it is known
  RelatedTables* related_;
};

/// Gives every automatic number of a new row that is null its value: a Long the number behind the last one (or behind
/// the greatest stored, when a unique index shows that one taken), with the default GenUniqueID() a random one; a GUID
/// a random one. Nothing is stored yet. Raises ProviderFailure when the numbers are used up.
void FillAutoNumbers(Pager& pager, StoredTable& table, RowValues& row);

/// Raises the table's counter to the automatic number of a row that was stored, when that is greater.
void KeepLastAutoNumber(Pager& pager, const StoredTable& table, const RowValues& row);

}  // namespace tavi::access
