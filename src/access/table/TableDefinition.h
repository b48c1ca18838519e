#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "access/file/Pager.h"

namespace tavi::access {

/// Type codes of columns, as stored.
enum class ColumnType : std::uint8_t {
  Boolean = 0x01,
  Byte = 0x02,
  Integer = 0x03,
  Long = 0x04,
  Currency = 0x05,
  Single = 0x06,
  Double = 0x07,
  Date = 0x08,
  Binary = 0x09,
  Text = 0x0A,
  Ole = 0x0B,
  Memo = 0x0C,
  Guid = 0x0F,
  Numeric = 0x10,
  FixedBinary = 0x11,
  Complex = 0x12
};

/// True for Text and Memo.
constexpr bool IsText(ColumnType type) {
  return type == ColumnType::Text || type == ColumnType::Memo;
}

/// One column record of a table definition.
struct ColumnDefinition {
  std::string name;
  ColumnType type = ColumnType::Long;
  std::uint16_t id = 0;             ///< permanent number: bit in the null mask, key of index and long-value records
  std::uint16_t variableIndex = 0;  ///< slot in a row's offset table (variable columns)
  std::uint16_t ordinal = 0;        ///< display position
  std::uint16_t sortOrder = 1033;   ///< LCID of text columns
  std::uint8_t sortVersion = 0;
  std::uint8_t precision = 0;      ///< Numeric
  std::uint8_t scale = 0;          ///< Numeric
  std::uint8_t flags = 0;          ///< as stored (fixed, autonumber, ...)
  std::uint8_t extendedFlags = 0;  ///< as stored (Unicode compression)
  std::uint16_t fixedOffset = 0;   ///< in the fixed area (fixed columns)
  std::uint16_t length = 0;        ///< in bytes; 0 for Memo and OLE

  [[nodiscard]] bool IsFixed() const;       ///< stored in the fixed area of a row
  [[nodiscard]] bool IsAutoNumber() const;  ///< Long autonumber
  [[nodiscard]] bool IsAutoGuid() const;    ///< GUID that is made for each new row; the flag stands on other types too
  [[nodiscard]] bool IsLongValue() const;   ///< Memo or OLE
  [[nodiscard]] bool IsCompressed() const;  ///< Unicode compression switched on
};

/// A column of a physical index.
struct IndexColumn {
  std::uint16_t columnId = 0;
  bool ascending = true;
};

/// A physical ("real") index: the B-tree.
struct RealIndexDefinition {
  std::vector<IndexColumn> columns;
  RowPointer ownedPages;  ///< map of the tree's pages
  PageNumber root = 0;
  bool unique = false;
  bool ignoreNulls = false;
  bool required = false;
  std::uint8_t flags = 0;  ///< as stored
};

/// A named (logical) index or one side of a relationship; several may share one physical index.
struct LogicalIndexDefinition {
  std::string name;
  std::uint32_t number = 0;
  std::uint32_t realIndex = 0;  ///< position in TableDefinition::realIndexes
  enum class Kind : std::uint8_t { Normal = 0, PrimaryKey = 1, Relationship = 2 };
  Kind kind = Kind::Normal;
  enum class Side : std::uint8_t { None = 0, Primary = 1, Foreign = 2 };
  Side side = Side::None;
  std::uint32_t partnerNumber = 0xFFFFFFFF;  ///< logical index number in the other table
  PageNumber partnerTable = 0;               ///< definition page of the other table
  std::uint8_t cascadeUpdates = 4;           ///< as stored: 0, 1, or 4 when no relationship
  std::uint8_t cascadeDeletes = 4;
};

/// The usage maps of a long-value (Memo or OLE) column.
struct LongValueMaps {
  std::uint16_t columnId = 0;
  RowPointer ownedPages;
  RowPointer freeSpacePages;
};

/// A table definition (TDEF) as its pages state it. The counters that change with each row (row count, last automatic
/// number, distinct keys) are not held here: read and write them with the functions below.
struct TableDefinition {
  PageNumber page = 0;  ///< first page; identifies the table
  bool isSystem = false;
  std::uint16_t columnIdCounter = 0;        ///< columns ever created
  std::uint16_t variableColumnCounter = 0;  ///< variable columns ever created
  RowPointer ownedPages;
  RowPointer freeSpacePages;
  std::vector<ColumnDefinition> columns;  ///< in stored order (ordinal, then name)
  std::vector<RealIndexDefinition> realIndexes;
  std::vector<LogicalIndexDefinition> logicalIndexes;  ///< in stored order (by name)
  std::vector<LongValueMaps> longValueMaps;

  /// The column of an id or name (ignoring case); nothing when there is none.
  [[nodiscard]] const ColumnDefinition* FindColumn(std::uint16_t id) const;
  [[nodiscard]] const ColumnDefinition* FindColumn(std::string_view name) const;
};

/// Reads a definition, following its continuation pages. Raises ProviderFailure, naming page and field, when it is
/// damaged (wrong page type, lengths or counts that do not fit, links in a circle).
TableDefinition ReadTableDefinition(Pager& pager, PageNumber page);

/// Writes a whole definition to its first page (definition.page, already allocated) and continuation pages, allocating
/// or freeing those as needed. Counters already stored there (row count, autonumber, index statistics, by position of
/// the real index) are kept when `keepCounters`, else they start at zero.
void WriteTableDefinition(Pager& pager, const TableDefinition& definition, bool keepCounters);
/// All pages of a definition, the first included.
std::vector<PageNumber> TableDefinitionPages(Pager& pager, PageNumber page);

std::uint32_t RowCount(Pager& pager, const TableDefinition& definition);
void SetRowCount(Pager& pager, const TableDefinition& definition, std::uint32_t count);
std::int32_t LastAutoNumber(Pager& pager, const TableDefinition& definition);
void SetLastAutoNumber(Pager& pager, const TableDefinition& definition, std::int32_t value);
/// Statistics of a real index: entries at the last build, distinct keys.
struct IndexStatistics {
  std::uint32_t entries = 0;
  std::uint32_t distinctKeys = 0;
};
IndexStatistics ReadIndexStatistics(Pager& pager, const TableDefinition& definition, std::size_t realIndex);
void WriteIndexStatistics(Pager& pager, const TableDefinition& definition, std::size_t realIndex,
                          const IndexStatistics& statistics);

}  // namespace tavi::access
