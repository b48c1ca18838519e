#include "access/table/FormatVersion.h"

#include <cstdint>

#include "access/file/DatabaseHeader.h"
#include "access/file/Format.h"
#include "access/file/Page.h"

// The two versions of the format have the same parts in the same order; only places and sizes differ. So there is one
// parser, and a table of places for each version. Names of the constants are those of Format.h: a place is changed
// there.

namespace tavi::access {

FormatVersion FormatVersionOf(Pager& pager) {
  if (!pager.IsJet3()) return {};
  // The code page lies in the masked part of page 0, which is handed out as it is stored; so a copy is unmasked.
  Page header = *pager.Read(format::kHeaderPage);
  ToggleHeaderMask(header);
  return {true, header.U16(format::header::kCodePageOffset)};
}

// Offsets of the header count from the start of the definition, all others from the start of their record.
const DefinitionLayout& Jet4DefinitionLayout() {
  namespace table = format::table;
  namespace index_slot = format::index_slot;
  namespace column = format::column;
  namespace real_index = format::real_index;
  namespace logical_index = format::logical_index;
  // The sort order is the LCID [2], an unused byte and the version.
  constexpr std::size_t kSortVersionOffset = column::kSortOrderOffset + 3;
  static constexpr DefinitionLayout kLayout = {
      kPageSize,
      {table::kLengthOffset, table::kRowCountOffset, table::kLastAutonumberOffset, table::kTypeOffset,
       table::kColumnIdCounterOffset, table::kVariableCountOffset, table::kColumnCountOffset,
       table::kLogicalIndexCountOffset, table::kRealIndexCountOffset, table::kOwnedPagesOffset,
       table::kFreeSpacePagesOffset, table::kHeaderSize},
      {index_slot::kEntryCountOffset, index_slot::kDistinctCountOffset, index_slot::kSize},
      {column::kTypeOffset, column::kIdOffset, column::kVariableIndexOffset, column::kOrdinalOffset,
       column::kSortOrderOffset, kSortVersionOffset, column::kPrecisionOffset, column::kScaleOffset,
       column::kFlagsOffset, column::kExtendedFlagsOffset, column::kFixedOffsetOffset, column::kLengthOffset,
       column::kSize},
      {real_index::kColumnsOffset, real_index::kUsageMapOffset, real_index::kRootPageOffset, real_index::kFlagsOffset,
       real_index::kSize},
      {logical_index::kNumberOffset, logical_index::kRealIndexOffset, logical_index::kSideOffset,
       logical_index::kPartnerOffset, logical_index::kOtherTableOffset, logical_index::kCascadeUpdatesOffset,
       logical_index::kCascadeDeletesOffset, logical_index::kTypeOffset, logical_index::kSize},
      table::kNameLengthSize};
  return kLayout;
}

const DefinitionLayout& Jet3DefinitionLayout() {
  namespace table = format::jet3::table;
  namespace index_slot = format::jet3::index_slot;
  namespace column = format::jet3::column;
  namespace real_index = format::jet3::real_index;
  namespace logical_index = format::jet3::logical_index;
  // Jet 3 keeps no version of a sort order and no compression of texts.
  constexpr std::size_t kNotStored = DefinitionLayout::kNotStored;
  static constexpr DefinitionLayout kLayout = {
      format::jet3::kPageSize,
      {table::kLengthOffset, table::kRowCountOffset, table::kLastAutonumberOffset, table::kTypeOffset,
       table::kColumnIdCounterOffset, table::kVariableCountOffset, table::kColumnCountOffset,
       table::kLogicalIndexCountOffset, table::kRealIndexCountOffset, table::kOwnedPagesOffset,
       table::kFreeSpacePagesOffset, table::kHeaderSize},
      // The slot of Jet 3 has the two counters of Jet 4, without the unused number behind them.
      {0, sizeof(std::uint32_t), index_slot::kSize},
      {column::kTypeOffset, column::kIdOffset, column::kVariableIndexOffset, column::kOrdinalOffset,
       column::kSortOrderOffset, kNotStored, column::kPrecisionOffset, column::kScaleOffset, column::kFlagsOffset,
       kNotStored, column::kFixedOffsetOffset, column::kLengthOffset, column::kSize},
      {real_index::kColumnsOffset, real_index::kUsageMapOffset, real_index::kRootPageOffset, real_index::kFlagsOffset,
       real_index::kSize},
      {logical_index::kNumberOffset, logical_index::kRealIndexOffset, logical_index::kSideOffset,
       logical_index::kPartnerOffset, logical_index::kOtherTableOffset, logical_index::kCascadeUpdatesOffset,
       logical_index::kCascadeDeletesOffset, logical_index::kTypeOffset, logical_index::kSize},
      table::kNameLengthSize};
  return kLayout;
}

}  // namespace tavi::access
