#pragma once

#include <cstddef>
#include <cstdint>

#include "access/file/Pager.h"

namespace tavi::access {

/// What rows and definitions need to know about the version of their file.
struct FormatVersion {
  bool isJet3 = false;
  std::uint16_t codePage = 0;  ///< of texts in a Jet 3 file; Jet 4 texts are Unicode
};

/// The version of an open file; needs an open statement.
[[nodiscard]] FormatVersion FormatVersionOf(Pager& pager);

/// Where the fields of a table definition lie in one version of the format. Offsets count from the start of the record
/// that the group is about; `kNotStored` marks a field that the version does not have.
struct DefinitionLayout {
  static constexpr std::size_t kNotStored = ~std::size_t{0};

  std::size_t pageSize;

  struct Header {
    std::size_t length, rowCount, lastAutonumber, type, columnIdCounter, variableCount, columnCount, logicalIndexCount,
        realIndexCount, ownedPages, freeSpacePages, size;
  } header;

  struct IndexSlot {
    std::size_t entryCount, distinctCount, size;
  } indexSlot;

  struct Column {
    std::size_t type, id, variableIndex, ordinal, sortOrder, sortVersion, precision, scale, flags, extendedFlags,
        fixedOffset, length, size;
  } column;

  struct RealIndex {
    std::size_t columns, usageMap, rootPage, flags, size;
  } realIndex;

  struct LogicalIndex {
    std::size_t number, realIndex, side, partner, otherTable, cascadeUpdates, cascadeDeletes, type, size;
  } logicalIndex;

  /// Bytes of the length before a name. One byte: the name is in the code page of the file, two: it is UTF-16.
  std::size_t nameLengthSize;
};

[[nodiscard]] const DefinitionLayout& Jet4DefinitionLayout();
[[nodiscard]] const DefinitionLayout& Jet3DefinitionLayout();

}  // namespace tavi::access
