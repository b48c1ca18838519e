#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "access/file/Pager.h"
#include "access/table/FormatVersion.h"
#include "access/table/TableDefinition.h"
#include "platform/values/Value.h"

namespace tavi::access {

// Long values (MEMO, OLE). The row holds a descriptor of 12 bytes (offset, size):
//
//   00 [4] length in bytes (low 30 bits) and form (top 2 bits)
//   04 [4] row pointer (row u8, page u24) of the first row on LVAL pages; 0 in the form inline
//   08 [4] form chain: stamp, as on the first page; else 0
//
//   form    top bits  where the data are
//   inline  80        behind the descriptor, in the row
//   single  40        a row on an LVAL page (data page with owner "LVAL"), shared with other values of the column
//   chain   00        rows on LVAL pages of their own: row pointer to the next one [4] (0 = last), then data
//
// Example, inline, a compressed memo:    07 00 00 80 00 00 00 00 00 00 00 00 FF FE 48 65 6C 6C 6F    "Hello"

/// A long value made ready to be stored: its form is decided, nothing is written yet.
struct PreparedLongValue {
  enum class Form : std::uint8_t { Inline, Single, Chain };
  Form form = Form::Inline;
  Bytes data;

  /// What it will take in the row, in bytes.
  [[nodiscard]] std::size_t SizeInRow() const;
};

/// Decides form and compression as Access does: inline up to 64 bytes, in one row up to about 3.8 KB, else a chain (all
/// before compression). Text of a Memo: inline is compressed where it can be, single only in columns with compression,
/// a chain never. `value` is a text for a Memo and Bytes for an OLE column, else ProviderTypeConflict is raised; so is
/// ProviderFailure for a value of a GB or more.
[[nodiscard]] PreparedLongValue PrepareLongValue(const Value& value, const ColumnDefinition& column);

/// Reads, stores and frees the long values of one column. Damage raises ProviderFailure.
class LongValues {
 public:
  LongValues(Pager& pager, const FormatVersion& version) : pager_(&pager), version_(version) {}

  /// The value that a row's stored bytes (descriptor and what follows) stand for. No bytes at all are an empty value.
  [[nodiscard]] Value Read(std::span<const std::uint8_t> stored, const ColumnDefinition& column) const;
  /// Stores a value and returns what belongs in the row. `maps` are the column's; not used for an inline value.
  [[nodiscard]] Bytes Store(const PreparedLongValue& value, const LongValueMaps& maps);
  /// Frees what a row's stored bytes refer to. Parts that are not the column's (a damaged file) are left alone.
  void Remove(std::span<const std::uint8_t> stored, const LongValueMaps& maps);
  /// True when the stored bytes refer to rows on LVAL pages.
  [[nodiscard]] static bool IsElsewhere(std::span<const std::uint8_t> stored);
  /// How many bytes the stored bytes say to have on LVAL pages.
  [[nodiscard]] static std::size_t SizeElsewhere(std::span<const std::uint8_t> stored);

 private:
  [[nodiscard]] Bytes ReadBytes(std::span<const std::uint8_t> stored, const ColumnDefinition& column) const;
  [[nodiscard]] Bytes ReadChain(RowPointer first, std::size_t length, const ColumnDefinition& column) const;
  [[nodiscard]] RowPointer StoreChain(std::span<const std::uint8_t> bytes, const LongValueMaps& maps);

  Pager* pager_;
  FormatVersion version_;
};

}  // namespace tavi::access
