#include <cstdint>

#include "access/file/Format.h"
#include "access/table/DefinitionLayout.h"

namespace tavi::access {

const DefinitionLayout& Jet3DefinitionLayout() {
  namespace table = format::jet3::table;
  namespace index_slot = format::jet3::index_slot;
  namespace column = format::jet3::column;
  namespace real_index = format::jet3::real_index;
  namespace logical_index = format::jet3::logical_index;
  constexpr std::size_t kNotStored = DefinitionLayout::kNotStored;
  static constexpr DefinitionLayout kLayout = {
      format::jet3::kPageSize,
      {table::kLengthOffset, table::kRowCountOffset, table::kLastAutonumberOffset, table::kTypeOffset,
       table::kColumnIdCounterOffset, table::kVariableCountOffset, table::kColumnCountOffset,
       table::kLogicalIndexCountOffset, table::kRealIndexCountOffset, table::kOwnedPagesOffset,
       table::kFreeSpacePagesOffset, table::kHeaderSize},
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
