// Reading table definitions. The bytes are those of the first page whole and of each further page behind its page
// header, put together; see format::table for the order of the lists.

#include <set>

#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/table/ByteBuffer.h"
#include "access/table/DefinitionBytes.h"
#include "access/table/TableDefinition.h"
#include "access/table/TextEncoding.h"

namespace tavi::access {
namespace {

namespace t = format::table;

/// Far above what 255 columns and 32 indexes with the longest names need.
constexpr std::size_t kMaximumDefinitionPages = 64;
constexpr std::uint32_t kMaximumIndexes = 1000;

std::string Where(PageNumber page) {
  return "The table definition at page " + std::to_string(page);
}

RowPointer Pointer(const ByteReader& bytes, std::size_t offset) {
  return RowPointer::FromPacked(bytes.Get<std::uint32_t>(offset));
}

/// Takes the lists of a definition apart, one behind the other.
class DefinitionParser {
 public:
  DefinitionParser(std::span<const std::uint8_t> bytes, PageNumber page) : bytes_(bytes, Where(page)) {
    definition_.page = page;
  }

  TableDefinition Parse() {
    ParseHeader();
    at_ = t::kHeaderSize + realIndexCount_ * format::index_slot::kSize;
    for (std::size_t i = 0; i < columnCount_; ++i) ParseColumn();
    for (ColumnDefinition& column : definition_.columns) column.name = ParseName();
    for (std::uint32_t i = 0; i < realIndexCount_; ++i) ParseRealIndex();
    for (std::uint32_t i = 0; i < logicalIndexCount_; ++i) ParseLogicalIndex();
    for (LogicalIndexDefinition& index : definition_.logicalIndexes) index.name = ParseName();
    ParseLongValueMaps();
    return std::move(definition_);
  }

 private:
  void ParseHeader() {
    definition_.isSystem = bytes_.Get<std::uint8_t>(t::kTypeOffset) == t::kTypeSystem;
    definition_.columnIdCounter = bytes_.Get<std::uint16_t>(t::kColumnIdCounterOffset);
    definition_.variableColumnCounter = bytes_.Get<std::uint16_t>(t::kVariableCountOffset);
    columnCount_ = bytes_.Get<std::uint16_t>(t::kColumnCountOffset);
    logicalIndexCount_ = bytes_.Get<std::uint32_t>(t::kLogicalIndexCountOffset);
    realIndexCount_ = bytes_.Get<std::uint32_t>(t::kRealIndexCountOffset);
    definition_.ownedPages = Pointer(bytes_, t::kOwnedPagesOffset);
    definition_.freeSpacePages = Pointer(bytes_, t::kFreeSpacePagesOffset);
    if (columnCount_ > 255 || logicalIndexCount_ > kMaximumIndexes || realIndexCount_ > kMaximumIndexes) {
      RaiseDamage(bytes_.What() + " counts " + std::to_string(columnCount_) + " columns, " +
                  std::to_string(realIndexCount_) + " and " + std::to_string(logicalIndexCount_) + " indexes");
    }
  }

  void ParseColumn() {
    namespace c = format::column;
    ColumnDefinition column;
    column.type = static_cast<ColumnType>(bytes_.Get<std::uint8_t>(at_ + c::kTypeOffset));
    column.id = bytes_.Get<std::uint16_t>(at_ + c::kIdOffset);
    column.variableIndex = bytes_.Get<std::uint16_t>(at_ + c::kVariableIndexOffset);
    column.ordinal = bytes_.Get<std::uint16_t>(at_ + c::kOrdinalOffset);
    if (column.type == ColumnType::Numeric) {
      column.precision = bytes_.Get<std::uint8_t>(at_ + c::kPrecisionOffset);
      column.scale = bytes_.Get<std::uint8_t>(at_ + c::kScaleOffset);
    } else {
      column.sortOrder = bytes_.Get<std::uint16_t>(at_ + c::kSortOrderOffset);
      column.sortVersion = bytes_.Get<std::uint8_t>(at_ + c::kSortOrderOffset + 3);
    }
    column.flags = bytes_.Get<std::uint8_t>(at_ + c::kFlagsOffset);
    column.extendedFlags = bytes_.Get<std::uint8_t>(at_ + c::kExtendedFlagsOffset);
    column.fixedOffset = bytes_.Get<std::uint16_t>(at_ + c::kFixedOffsetOffset);
    column.length = bytes_.Get<std::uint16_t>(at_ + c::kLengthOffset);
    definition_.columns.push_back(std::move(column));
    at_ += c::kSize;
  }

  std::string ParseName() {
    const auto length = bytes_.Get<std::uint16_t>(at_);
    at_ += t::kNameLengthSize;
    const std::string name = DecodeText(bytes_.Slice(at_, length));
    at_ += length;
    return name;
  }

  void ParseRealIndex() {
    namespace r = format::real_index;
    RealIndexDefinition index;
    for (std::size_t i = 0; i < r::kMaximumColumnCount; ++i) {
      const std::size_t place = at_ + r::kColumnsOffset + i * r::kColumnSize;
      const auto id = bytes_.Get<std::uint16_t>(place);
      if (id == r::kNoColumn) continue;
      index.columns.push_back({id, bytes_.Get<std::uint8_t>(place + r::kColumnOrderOffset) == r::kAscending});
    }
    index.ownedPages = Pointer(bytes_, at_ + r::kUsageMapOffset);
    index.root = bytes_.Get<std::uint32_t>(at_ + r::kRootPageOffset);
    index.flags = bytes_.Get<std::uint8_t>(at_ + r::kFlagsOffset);
    index.unique = (index.flags & r::kFlagUnique) != 0;
    index.ignoreNulls = (index.flags & r::kFlagIgnoreNulls) != 0;
    index.required = (index.flags & r::kFlagRequired) != 0;
    definition_.realIndexes.push_back(std::move(index));
    at_ += r::kSize;
  }

  void ParseLogicalIndex() {
    namespace l = format::logical_index;
    LogicalIndexDefinition index;
    index.number = bytes_.Get<std::uint32_t>(at_ + l::kNumberOffset);
    index.realIndex = bytes_.Get<std::uint32_t>(at_ + l::kRealIndexOffset);
    index.side = static_cast<LogicalIndexDefinition::Side>(bytes_.Get<std::uint8_t>(at_ + l::kSideOffset));
    index.partnerNumber = bytes_.Get<std::uint32_t>(at_ + l::kPartnerOffset);
    index.partnerTable = bytes_.Get<std::uint32_t>(at_ + l::kOtherTableOffset);
    index.cascadeUpdates = bytes_.Get<std::uint8_t>(at_ + l::kCascadeUpdatesOffset);
    index.cascadeDeletes = bytes_.Get<std::uint8_t>(at_ + l::kCascadeDeletesOffset);
    index.kind = static_cast<LogicalIndexDefinition::Kind>(bytes_.Get<std::uint8_t>(at_ + l::kTypeOffset));
    if (index.realIndex >= realIndexCount_) {
      RaiseDamage(bytes_.What() + " has an index that refers to real index " + std::to_string(index.realIndex) +
                  " of " + std::to_string(realIndexCount_));
    }
    definition_.logicalIndexes.push_back(std::move(index));
    at_ += l::kSize;
  }

  void ParseLongValueMaps() {
    namespace m = format::long_value_maps;
    while (bytes_.Get<std::uint16_t>(at_) != t::kTerminator) {
      definition_.longValueMaps.push_back({bytes_.Get<std::uint16_t>(at_ + m::kColumnIdOffset),
                                           Pointer(bytes_, at_ + m::kOwnedPagesOffset),
                                           Pointer(bytes_, at_ + m::kFreeSpaceOffset)});
      at_ += m::kSize;
    }
  }

  ByteReader bytes_;
  TableDefinition definition_;
  std::size_t columnCount_ = 0;
  std::uint32_t realIndexCount_ = 0;
  std::uint32_t logicalIndexCount_ = 0;
  std::size_t at_ = 0;
};

}  // namespace

std::vector<PageNumber> TableDefinitionPages(Pager& pager, PageNumber page) {
  std::vector<PageNumber> pages;
  for (PageNumber next = page; next != 0;) {
    const PageHandle handle = pager.Read(next);
    if (handle->U8(format::kPageTypeOffset) != format::page_type::kTableDefinition) {
      RaiseDamage(Where(page) + ": page " + std::to_string(next) + " is no definition page");
    }
    pages.push_back(next);
    if (pages.size() > kMaximumDefinitionPages) RaiseDamage(Where(page) + ": its pages are linked in a circle");
    next = handle->U32(t::kNextPageOffset);
  }
  return pages;
}

std::vector<std::uint8_t> ReadDefinitionBytes(Pager& pager, PageNumber page) {
  std::vector<std::uint8_t> bytes;
  for (const PageNumber number : TableDefinitionPages(pager, page)) {
    const PageHandle handle = pager.Read(number);
    const std::size_t skipped = number == page ? 0 : t::kPageHeaderSize;
    const auto content = handle->Slice(skipped, kPageSize - skipped);
    bytes.insert(bytes.end(), content.begin(), content.end());
  }
  const auto length = GetLittle<std::uint32_t>(bytes, t::kLengthOffset);
  if (length < t::kHeaderSize || length > bytes.size()) {
    RaiseDamage(Where(page) + " gives its length as " + std::to_string(length) + " bytes, but its pages hold " +
                std::to_string(bytes.size()));
  }
  bytes.resize(length);
  return bytes;
}

TableDefinition ParseTableDefinition(std::span<const std::uint8_t> bytes, PageNumber page) {
  return DefinitionParser(bytes, page).Parse();
}

TableDefinition ReadTableDefinition(Pager& pager, PageNumber page) {
  return ParseTableDefinition(ReadDefinitionBytes(pager, page), page);
}

}  // namespace tavi::access
