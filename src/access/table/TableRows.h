#pragma once

#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "access/file/Pager.h"
#include "access/table/FormatVersion.h"
#include "access/table/LongValues.h"
#include "access/table/ReferredBytes.h"
#include "access/table/RowCodec.h"
#include "access/table/RowPlaces.h"
#include "access/table/RowView.h"
#include "access/table/TableDefinition.h"
#include "platform/values/Error.h"
#include "platform/values/Value.h"

namespace tavi::access {

/// The rows of one table without its indexes: insert, read, update, delete, walk. Long values are stored and fetched
/// here too, and the row count in the definition is kept. Holds a reference to the definition; every call works in the
/// pager's current statement. An error while a row is stored or changed ("Record is too large.", a value of a wrong
/// type) leaves the pages as they were; after any other error the statement is to be rolled back.
class TableRows {
 public:
  /// `definition` is changed in one case only: a long-value column gets its usage maps when it first needs a page.
  TableRows(Pager& pager, TableDefinition& definition)
      : pager_(&pager), definition_(&definition), writableDefinition_(&definition) {}
  /// As above, but new usage maps are only written to the file, and looked up there later on.
  TableRows(Pager& pager, const TableDefinition& definition) : pager_(&pager), definition_(&definition) {}

  /// Stores a row and returns where. Values must already have their column's type (see ConvertForColumn in RowCodec.h)
  /// and length. Raises ProviderFailure when the row is larger than a page takes ("Record is too large.").
  RowPointer Insert(const RowValues& values);
  /// Replaces a row; its RowPointer stays the same even when the bytes move to another page. Long values that did not
  /// change are kept where they are. Nothing is written when no value changes.
  /// `before`: the values as they are stored, from a caller who has just read them; null: they are read.
  void Update(RowPointer row, const RowValues& values, const RowValues* before = nullptr);
  void Delete(RowPointer row);

  /// True when a live row is there (and not the moved body of another one).
  [[nodiscard]] bool Exists(RowPointer row) const;
  /// All values of a row. Raises ProviderFailure when there is none or it is damaged.
  [[nodiscard]] RowValues Read(RowPointer row) const;
  /// The values of some columns (positions in TableDefinition::columns); the others are null. Saves fetching long
  /// values.
  [[nodiscard]] RowValues Read(RowPointer row, const std::vector<bool>& wanted) const;
  /// The same into `values`, for callers who read row after row: the others stay as they are, null where `values` had
  /// another size.
  void Read(RowPointer row, const std::vector<bool>& wanted, RowValues& values) const;

  /// The live rows in the order of pages and row numbers. `after` none starts at the first. Nothing at the end. Rows
  /// may be changed and deleted between calls, `after` included.
  [[nodiscard]] std::optional<RowPointer> Next(std::optional<RowPointer> after) const;
  /// How many live rows there are, by their places on the pages. Raises as Next.
  [[nodiscard]] std::int64_t Count() const;
  /// Calls `visit` for each live row; rows may not be changed meanwhile. Returns early when it gives false.
  void Walk(const std::function<bool(RowPointer)>& visit) const;
  /// As Walk to the end, but damage does not end it: for a page that cannot be read (one that is no data page of the
  /// table included), and for a row whose place on its page makes no sense, `damaged` is called in turn with the place
  /// (a page's row 0) and the error. When the table's list of pages is damaged too, every page of the file that names
  /// the table as its owner is taken.
  void WalkPastDamage(const std::function<void(RowPointer)>& visit,
                      const std::function<void(RowPointer, const Error&)>& damaged) const;

  /// Frees all pages of rows and long values and empties the maps (drop table, delete of everything).
  void RemoveAll();
  /// Frees the long-value pages of one column (drop column); the row bytes stay.
  void RemoveLongValues(std::uint16_t columnId);

 private:
  using Stored = std::span<const std::uint8_t>;

  [[nodiscard]] FormatVersion Version() const;
  [[nodiscard]] FoundRow Require(RowPointer row) const;
  [[nodiscard]] Value ReadValue(const RowView& view, const ColumnDefinition& column, RowPointer row) const;
  /// The row, which is going to be read. Raises ProviderFailure also where rows refer to more than there can be.
  [[nodiscard]] FoundRow RequireToRead(RowPointer row) const;
  void NoteElsewhere(RowPointer row, std::uint16_t part, std::size_t length) const;
  [[nodiscard]] std::size_t SizeElsewhere(ReferredBytes::Reference reference) const;
  [[nodiscard]] const Page* OwnedPage(PageNumber number, PageHandle& holder) const;
  /// The same; raises ProviderFailure where OwnedPage gives null.
  const Page& RequireOwnedPage(PageNumber number, PageHandle& holder) const;
  [[nodiscard]] std::vector<PageNumber> OwnedPagesPastDamage() const;
  [[nodiscard]] RowSpace Space() const;

  [[nodiscard]] LongValueMaps MapsOf(std::uint16_t columnId) const;
  [[nodiscard]] LongValueMaps MapsForStoring(std::uint16_t columnId);
  [[nodiscard]] Bytes StoreLongValue(const PreparedLongValue& value, std::uint16_t columnId);
  void ReplaceBytes(RowPointer row, RowPointer body, const Bytes& bytes);
  bool PatchInPlace(const FoundRow& found, const RowView& view, const RowValues& values,
                    const std::vector<std::size_t>& changed);

  Pager* pager_;
  const TableDefinition* definition_;
  TableDefinition* writableDefinition_ = nullptr;
  PageNumber lastInserted_ = 0;  // page, tried first for the next row
  mutable std::optional<FormatVersion> version_;
  mutable ReferredBytes elsewhere_;
};

}  // namespace tavi::access
