#pragma once

#include <span>
#include <vector>

#include "access/file/UsageMap.h"
#include "access/table/TableDefinition.h"

namespace tavi::access {

/// The long values (Memo, OLE) of one table: what a row holds of them is a descriptor of 12 bytes — length [4, top two
/// bits the form], row pointer [4], stamp [4] — followed by the data themselves in the inline form. Otherwise the data
/// are one row of a long-value page, or a chain of pages each of whose row 0 begins with the pointer to the next.
/// Example: 07 00 00 80 00 00 00 00 00 00 00 00 FF FE 48 65 6C 6C 6F is the memo "Hello", inline and compressed.
class LongValueStore {
 public:
  LongValueStore(Pager& pager, const TableDefinition& definition) : pager_(pager), definition_(definition) {}

  /// The data that a descriptor leads to. Damage raises ProviderFailure.
  [[nodiscard]] std::vector<std::uint8_t> Read(std::span<const std::uint8_t> descriptor) const;
  /// Stores data for a column and returns its descriptor. `plainSize` is the length before compression, which decides
  /// the form.
  std::vector<std::uint8_t> Write(const ColumnDefinition& column, std::span<const std::uint8_t> data,
                                  std::size_t plainSize);
  /// Gives back the pages and rows that a descriptor leads to.
  void Free(const ColumnDefinition& column, std::span<const std::uint8_t> descriptor);

 private:
  [[nodiscard]] LongValueMaps MapsOf(const ColumnDefinition& column) const;
  RowPointer WriteSingle(const LongValueMaps& maps, std::span<const std::uint8_t> data);
  RowPointer WriteChain(const LongValueMaps& maps, std::span<const std::uint8_t> data);
  Page& NewPage(const LongValueMaps& maps);
  void FreeRow(const LongValueMaps& maps, RowPointer row);

  Pager& pager_;
  const TableDefinition& definition_;
};

/// The form in which a memo's text is stored: compressed when it is short enough to be inline, or the column says so
/// and it is not a chain.
std::vector<std::uint8_t> EncodeMemo(const std::string& text, const ColumnDefinition& column);

}  // namespace tavi::access
