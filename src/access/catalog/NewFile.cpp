// A new, empty file, page by page:
//
//   0       header: masked; creation date, sort order, code page 1252, no password
//   1       map of free pages: rows 0 (pages free) and 1 (an empty map that nothing uses)
//   2 - 5   definitions of MSysObjects, MSysACEs, MSysQueries, MSysRelationships
//   6       the usage maps of all four, 31 rows
//   7 - 13  roots of their seven indexes
//   14      rows of MSysObjects: three containers, the database, the four tables
//   15      rows of MSysACEs: who may do what with them
//
// Only header and map are put together byte by byte. The rest comes about as definitions, indexes and rows are made
// with the writers that serve every file, on a pager in memory; so what a new file is made with is what writes a club's
// file later on, and the pages come in the order that files of the database engine have.
#include "access/catalog/NewFile.h"

#include <bit>

#include "access/catalog/Catalog.h"
#include "access/catalog/MemoryPager.h"
#include "access/catalog/SystemTables.h"
#include "access/catalog/TableLayout.h"
#include "access/file/DatabaseHeader.h"
#include "access/file/Format.h"

namespace tavi::access {

namespace {

namespace names = system_name;

/// The header, the free-page map and the first pages of the system tables have fixed places.
constexpr PageNumber kFixedPages = format::kRelationshipsTablePage + 1;

void WriteHeader(Page& page, const NewFileStamp& stamp) {
  // The date must be the stamp's: the password's mask goes by it, and so do the security ids in two tables.
  namespace layout = format::header;
  page.Put(layout::kMagicOffset, layout::kMagic);
  std::size_t place = layout::kEngineNameOffset;
  for (const char* letter = layout::kEngineNameJet; *letter != '\0'; ++letter)
    page.SetU8(place++, static_cast<std::uint8_t>(*letter));
  page.SetU32(layout::kVersionOffset, layout::kVersionJet4);
  page.SetU32(layout::kGlobalFreeMapOffset, RowPointer{format::kGlobalMapPage, format::kGlobalFreeMapRow}.Packed());
  page.SetU32(layout::kGlobalSecondMapOffset, RowPointer{format::kGlobalMapPage, format::kGlobalSecondMapRow}.Packed());
  page.SetU32(layout::kObjectsTableOffset, format::kObjectsTablePage);
  page.SetU32(layout::kAcesTableOffset, format::kAcesTablePage);
  page.SetU32(layout::kQueriesTableOffset, format::kQueriesTablePage);
  page.SetU32(layout::kRelationshipsTableOffset, format::kRelationshipsTablePage);
  page.SetU16(layout::kCodePageOffset, layout::kCodePage1252);
  // The password's 40 bytes are masked with the days of the creation date, four bytes again and again. No password is
  // all zero, so that the mask itself stands there.
  const auto days = static_cast<std::uint32_t>(std::bit_cast<double>(stamp.creationDate));
  for (std::size_t i = 0; i < layout::kPasswordSize; i += sizeof days) page.SetU32(layout::kPasswordOffset + i, days);
  page.SetU16(layout::kBuildNumberOffset, stamp.build);
  page.Put(layout::kSortOrderOffset, format::column::kSortOrderGeneral);
  page.SetU32(layout::kCreationDateOffset, static_cast<std::uint32_t>(stamp.creationDate));
  page.SetU32(layout::kCreationDateOffset + 4, static_cast<std::uint32_t>(stamp.creationDate >> 32U));
  page.SetU32(layout::kConstantOffset, layout::kConstant);
  page.Put(layout::kVersionTextOffset, layout::kVersionText);
  // Two bytes for each of 256 users. A file that was made has had one.
  for (std::size_t slot = 0; slot < layout::kCommitSlotCount; ++slot) {
    page.Put(layout::kCommitBytesOffset + slot * layout::kCommitSlotUnused.size(),
             slot == 0 ? layout::kCommitSlotUsedOnce : layout::kCommitSlotUnused);
  }
  ToggleHeaderMask(page);
}

/// A row of MSysObjects that every file has. The order of these rows, and of the rights below, is that in the file.
struct ObjectPlan {
  std::uint32_t id;
  std::uint32_t parent;
  std::int16_t type;
  const char* name;
};

constexpr ObjectPlan kObjects[] = {
    {format::catalog::kTablesId, format::catalog::kRootId, format::catalog::kTypeContainer, "Tables"},
    {format::catalog::kDatabasesId, format::catalog::kRootId, format::catalog::kTypeContainer, "Databases"},
    {format::catalog::kRelationshipsId, format::catalog::kRootId, format::catalog::kTypeContainer, "Relationships"},
    {format::catalog::kDatabaseId, format::catalog::kDatabasesId, format::catalog::kTypeDatabase, "MSysDb"},
    {format::kObjectsTablePage, format::catalog::kTablesId, format::catalog::kTypeTable, names::kObjects},
    {format::kAcesTablePage, format::catalog::kTablesId, format::catalog::kTypeTable, names::kAces},
    {format::kQueriesTablePage, format::catalog::kTablesId, format::catalog::kTypeTable, names::kQueries},
    {format::kRelationshipsTablePage, format::catalog::kTablesId, format::catalog::kTypeTable, names::kRelationships},
};

enum class Holder { Admin, Users, Creator };

/// A row of MSysACEs. What `inheritable` rights a container has its new objects get: those of the Creator go to whoever
/// makes the object.
struct RightPlan {
  std::uint32_t object = 0;
  std::uint32_t mask = 0;
  Holder holder = Holder::Admin;
  bool inheritable = false;
};

constexpr RightPlan kRights[] = {
    {format::kObjectsTablePage, 0x00060000, Holder::Admin},
    {format::kAcesTablePage, 0x00060000, Holder::Admin},
    {format::kQueriesTablePage, 0x00060000, Holder::Admin},
    {format::kRelationshipsTablePage, 0x000E0000, Holder::Admin},
    {format::catalog::kTablesId, format::catalog::kRightsOwner, Holder::Creator, true},
    {format::catalog::kTablesId, 0x00060001, Holder::Admin},
    {format::catalog::kRelationshipsId, format::catalog::kRightsOwner, Holder::Creator, true},
    {format::catalog::kRelationshipsId, 0x00060001, Holder::Admin},
    {format::catalog::kDatabasesId, 0x00060000, Holder::Admin},
    {format::catalog::kDatabaseId, 0x0006000E, Holder::Admin},
    {format::catalog::kDatabaseId, 0x0000000E, Holder::Users},
    {format::kQueriesTablePage, 0x00000014, Holder::Users},
    {format::kRelationshipsTablePage, 0x00000014, Holder::Users},
    {format::kObjectsTablePage, 0x00000014, Holder::Users},
    {format::catalog::kTablesId, format::catalog::kRightsTable, Holder::Users, true},
    {format::catalog::kRelationshipsId, format::catalog::kRightsFull, Holder::Users, true},
};

/// Ids are masked with bytes that go by the date in the header, hence the stamp.
Bytes HolderId(const NewFileStamp& stamp, Holder holder) {
  switch (holder) {
    case Holder::Users:
      return MaskedSecurityId(stamp.maskedAdmin, format::security::kUsers);
    case Holder::Creator:
      return MaskedSecurityId(stamp.maskedAdmin, format::security::kCreator);
    default:
      return MaskedSecurityId(stamp.maskedAdmin, format::security::kAdmin);
  }
}

/// The database belongs to the administrator, all else to the engine. The database's row is also where a file's masked
/// administrator is found later on, which all other ids are made of.
void InsertObjects(StoredTable& objects, Date now, const NewFileStamp& stamp) {
  const Bytes admin = HolderId(stamp, Holder::Admin);
  const Bytes engine = MaskedSecurityId(stamp.maskedAdmin, format::security::kEngine);
  for (const ObjectPlan& plan : kObjects) {
    SystemRow row(objects);
    row.Set(names::kId, static_cast<std::int32_t>(plan.id))
        .Set(names::kParentId, static_cast<std::int32_t>(plan.parent))
        .Set(names::kType, plan.type)
        .Set(names::kName, std::string(plan.name))
        .Set(names::kDateCreate, now)
        .Set(names::kDateUpdate, now)
        .Set(names::kFlags, static_cast<std::int32_t>(format::catalog::kFlagEngineSystem))
        .Set(names::kOwner, plan.id == format::catalog::kDatabaseId ? admin : engine);
    objects.Insert(row.Values());
  }
}

void InsertRights(StoredTable& aces, const NewFileStamp& stamp) {
  for (const RightPlan& plan : kRights) {
    SystemRow row(aces);
    row.Set(names::kObjectId, static_cast<std::int32_t>(plan.object))
        .Set(names::kAcm, static_cast<std::int32_t>(plan.mask))
        .Set(names::kInheritable, plan.inheritable)
        .Set(names::kSid, HolderId(stamp, plan.holder));
    aces.Insert(row.Values());
  }
}

}  // namespace

// Two fresh maps: the first with every page but the fixed ones free, the second empty.
void FormatGlobalMap(Page& page) {
  namespace layout = format::data;
  // The rows are packed from the end of the page downwards, like those of every data page.
  constexpr std::size_t kFirstRow = kPageSize - format::usage::kRowSize;
  constexpr std::size_t kSecondRow = kFirstRow - format::usage::kRowSize;
  page.SetU8(format::kPageTypeOffset, format::page_type::kData);
  page.SetU8(format::kPageMarkOffset, format::kPageMark);
  page.SetU32(layout::kOwnerOffset, layout::kOwnerGlobalMap);
  page.SetU16(layout::kRowCountOffset, 2);
  page.SetU16(layout::kRowDirectoryOffset, kFirstRow);
  page.SetU16(layout::kRowDirectoryOffset + layout::kRowEntrySize, kSecondRow);
  page.SetU16(layout::kFreeBytesOffset, kSecondRow - layout::kRowDirectoryOffset - 2 * layout::kRowEntrySize);
  constexpr std::size_t kBitmapSize = format::usage::kRowSize - format::usage::kInlineBitmapOffset;
  page.Fill(kFirstRow + format::usage::kInlineBitmapOffset, kBitmapSize, 0xFF);
  // Pages 0 to 5 are in use; bits past the end of the file count as free, so that it can grow up to page 511 by this
  // row.
  page.SetU8(kFirstRow + format::usage::kInlineBitmapOffset, static_cast<std::uint8_t>(0xFFU << kFixedPages));
}

std::vector<Page> MakeNewFile(Date now, const NewFileStamp& stamp) {
  MemoryPager pager(kFixedPages);
  WriteHeader(pager.Write(format::kHeaderPage), stamp);
  FormatGlobalMap(pager.Write(format::kGlobalMapPage));
  std::array<SystemTable, 4> tables = MakeSystemTables();
  // The four tables share one page of maps: 31 rows of the 57 that fit.
  PageNumber mapPage = 0;
  for (SystemTable& table : tables) {
    AllocateParts(pager, table.definition, mapPage);
    WriteTableDefinition(pager, table.definition, false);
    mapPage = table.definition.ownedPages.page;
  }
  const auto open = [&](const SystemTable& table) {
    // Without a catalogue, which is what is being made; the tables have no relationships.
    return StoredTable(pager, table.name, true, table.definition, PropertyBlob(), nullptr);
  };
  StoredTable objects = open(tables[0]);
  InsertObjects(objects, now, stamp);
  StoredTable aces = open(tables[1]);
  InsertRights(aces, stamp);
  return pager.Pages();
}

}  // namespace tavi::access
