#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "access/file/Page.h"
#include "access/table/FormatVersion.h"
#include "access/table/TableDefinition.h"

namespace tavi::access {

// A table definition as one run of bytes: its first page whole, followed by what lies behind the page header of each
// further page. In this order (Jet 4; sizes in bytes):
//
//   header 63 | real-index slots 12 each | column records 25 each | column names | real indexes 52 each |
//   logical indexes 28 each | their names | long-value maps 10 each | FF FF
//
// Example, the first bytes of a table with 9 columns and 2 indexes (536 bytes in all):
//   0000  02 01 e0 0d 00 00 00 00 18 02 00 00 59 06 00 00   free 3552, next page 0, length 0x218, 1625
//   0010  02 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00   2 rows, last autonumber 0, increment 1
//   0020  00 00 00 00 00 00 00 00 4e 09 00 02 00 09 00 02   'N', 9 ids, 2 variable, 9 columns, 2 logical ...

/// The numbers in a definition that change with rows.
struct DefinitionCounters {
  std::uint32_t rows = 0;
  std::int32_t lastAutoNumber = 0;
  std::vector<IndexStatistics> indexes;  ///< by position of the real index; missing ones count as zero
};

/// Takes a definition apart. `bytes` may go on behind its end. `page` is its first page. Raises ProviderFailure that
/// names the page and the field when something does not fit.
[[nodiscard]] TableDefinition ParseTableDefinition(std::span<const std::uint8_t> bytes, PageNumber page,
                                                   const FormatVersion& version);
/// The counters of a definition whose header and index slots are whole.
[[nodiscard]] DefinitionCounters ParseCounters(std::span<const std::uint8_t> bytes, PageNumber page);

/// Puts a definition together for a Jet 4 file. The fields of the page header (free bytes, next page) are left zero,
/// and so is what Access leaves to chance.
[[nodiscard]] std::vector<std::uint8_t> SerializeTableDefinition(const TableDefinition& definition,
                                                                 const DefinitionCounters& counters);

/// The bytes of a table definition with a place to read on from. Every read is checked against the end; what lies past
/// it raises ProviderFailure that names the definition's page and the field.
class DefinitionReader {
 public:
  /// The whole definition; fields by their fixed places.
  DefinitionReader(std::span<const std::uint8_t> bytes, PageNumber page) : bytes_(bytes), page_(page) {}

  [[nodiscard]] std::uint8_t U8(std::size_t offset, const char* field) const;
  [[nodiscard]] std::uint16_t U16(std::size_t offset, const char* field) const;
  [[nodiscard]] std::uint32_t U32(std::size_t offset, const char* field) const;
  [[nodiscard]] RowPointer Pointer(std::size_t offset, const char* field) const;

  /// The place to read on from.
  [[nodiscard]] std::size_t Position() const { return position_; }
  void MoveTo(std::size_t position) { position_ = position; }
  /// The next `size` bytes as a record of their own, and moves behind them.
  [[nodiscard]] DefinitionReader Record(std::size_t size, const char* what);
  [[nodiscard]] std::span<const std::uint8_t> Bytes() const { return bytes_; }

  [[noreturn]] void Raise(const std::string& what) const;

 private:
  void Check(std::size_t offset, std::size_t size, const char* field) const;

  std::span<const std::uint8_t> bytes_;
  PageNumber page_;
  std::size_t position_ = 0;
};

}  // namespace tavi::access
