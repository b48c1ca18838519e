#include "access/table/support/TestTable.h"

#include <algorithm>

#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/file/UsageMap.h"
#include "access/file/support/SmallDatabase.h"
#include "access/table/DataPage.h"
#include "access/table/ValueCodec.h"

namespace tavi::access::test {

namespace {

namespace data = format::data;

constexpr PageNumber kFirstPages = 6;  // header, global map and the fixed places of the system tables
constexpr const char* kTestFile = "test.mdb";

bool MayBeFixed(const ColumnPlan& plan) {
  switch (plan.type) {
    case ColumnType::Memo:
    case ColumnType::Ole:
      return false;
    case ColumnType::Text:
    case ColumnType::Binary:
      return plan.isFixed;
    default:
      return plan.isFixed || plan.type == ColumnType::Boolean;
  }
}

std::uint16_t LengthOf(const ColumnPlan& plan) {
  if (plan.type == ColumnType::Boolean) return 1;
  return static_cast<std::uint16_t>(SizeOfType(plan.type).value_or(plan.length));
}

void AppendColumn(TableDefinition& definition, const ColumnPlan& plan) {
  ColumnDefinition column;
  column.name = plan.name;
  column.type = plan.type;
  column.id = definition.columnIdCounter++;
  column.ordinal = column.id;
  column.variableIndex = definition.variableColumnCounter;
  column.length = LengthOf(plan);
  column.flags = format::column_flag::kUpdatable;
  if (plan.isCompressed) column.extendedFlags = format::column_extended_flag::kCompressed;
  if (plan.type == ColumnType::Numeric) {
    column.precision = plan.precision;
    column.scale = plan.scale;
  }
  if (MayBeFixed(plan)) {
    column.flags |= format::column_flag::kFixed;
    for (const ColumnDefinition& other : definition.columns) {
      if (plan.type == ColumnType::Boolean || !other.IsFixed() || other.type == ColumnType::Boolean) continue;
      column.fixedOffset =
          std::max<std::uint16_t>(column.fixedOffset, static_cast<std::uint16_t>(other.fixedOffset + other.length));
    }
  } else {
    ++definition.variableColumnCounter;
  }
  definition.columns.push_back(column);
}

std::shared_ptr<MemoryFileSystem> MakeFiles() {
  auto files = std::make_shared<MemoryFileSystem>();
  Pager::Create(*files, kTestFile, MakeSmallDatabase(kFirstPages));
  return files;
}

std::string Name(PageNumber page) {
  return "page " + std::to_string(page);
}

}  // namespace

ColumnPlan TextColumn(const std::string& name, std::uint16_t characters, bool isCompressed) {
  return {name, ColumnType::Text, static_cast<std::uint16_t>(2 * characters), isCompressed, false};
}

TableDefinition PlanTable(const std::vector<ColumnPlan>& columns) {
  TableDefinition definition;
  for (const ColumnPlan& plan : columns) AppendColumn(definition, plan);
  return definition;
}

ColumnDefinition PlanColumn(const ColumnPlan& plan) {
  return PlanTable({plan}).columns.front();
}

TestTable::TestTable(const std::vector<ColumnPlan>& columns)
    : files_(MakeFiles()),
      pager_(Pager::Open(files_, kTestFile, {})),
      definition_(PlanTable(columns)),
      rows_(*pager_, definition_) {
  pager_->BeginWrite();
  PageAllocator allocator(*pager_);
  definition_.page = allocator.Allocate().Number();
  definition_.ownedPages = allocator.AddUsageMap(0);
  definition_.freeSpacePages = allocator.AddUsageMap(definition_.ownedPages.page);
  for (const ColumnDefinition& column : definition_.columns) {
    if (!column.IsLongValue()) continue;
    const RowPointer owned = allocator.AddUsageMap(definition_.ownedPages.page);
    definition_.longValueMaps.push_back({column.id, owned, allocator.AddUsageMap(definition_.ownedPages.page)});
  }
  WriteTableDefinition(*pager_, definition_, false);
}

TestTable::~TestTable() {
  pager_->Rollback();
}

void TestTable::Commit() {
  pager_->Commit();
  pager_->BeginWrite();
}

void TestTable::Rollback() {
  pager_->Rollback();
  pager_->BeginWrite();
}

std::vector<RowPointer> TestTable::AllRows() {
  std::vector<RowPointer> rows;
  rows_.Walk([&rows](RowPointer row) {
    rows.push_back(row);
    return true;
  });
  return rows;
}

std::vector<PageNumber> TestTable::DataPages() {
  return UsageMap(*pager_, definition_.ownedPages).Pages();
}

std::vector<PageNumber> TestTable::LongValuePages(std::size_t column) {
  for (const LongValueMaps& maps : definition_.longValueMaps) {
    if (maps.columnId == definition_.columns.at(column).id) return UsageMap(*pager_, maps.ownedPages).Pages();
  }
  return {};
}

void TestTable::AddColumn(const ColumnPlan& column) {
  AppendColumn(definition_, column);
  WriteTableDefinition(*pager_, definition_, true);
}

void TestTable::DropColumn(const std::string& name) {
  std::erase_if(definition_.columns, [&name](const ColumnDefinition& column) { return column.name == name; });
  WriteTableDefinition(*pager_, definition_, true);
}

void TestTable::ForgetMaps(std::size_t column) {
  for (LongValueMaps& maps : definition_.longValueMaps) {
    if (maps.columnId != definition_.columns.at(column).id) continue;
    PageAllocator(*pager_).RemoveUsageMap(maps.ownedPages);
    PageAllocator(*pager_).RemoveUsageMap(maps.freeSpacePages);
    maps.ownedPages = {};
    maps.freeSpacePages = {};
  }
  WriteTableDefinition(*pager_, definition_, true);
}

// ---------------------------------------------------------------------------------------------------------------------
// Checking
// ---------------------------------------------------------------------------------------------------------------------

void TestTable::CheckDataPage(PageNumber number, std::uint32_t owner, std::vector<std::string>& faults) {
  const PageHandle page = pager_->Read(number);
  if (!DataPageReader::IsOwnedBy(*page, owner)) {
    faults.push_back(Name(number) + " is not its owner's");
    return;
  }
  const DataPageReader reader(*page, Jet4DataPageLayout());
  std::size_t lowest = kPageSize;
  for (std::size_t row = 0; row < reader.RowCount(); ++row) lowest = reader.Entry(row).offset;
  const std::size_t free = lowest - (data::kRowDirectoryOffset + data::kRowEntrySize * reader.RowCount());
  if (page->U16(data::kFreeBytesOffset) != free) faults.push_back(Name(number) + " has wrong free bytes");
}

void TestTable::CheckPages(RowPointer owned, RowPointer withRoom, std::uint32_t owner, std::multiset<PageNumber>& used,
                           std::vector<std::string>& faults) {
  const UsageMap ownedPages(*pager_, owned);
  for (const PageNumber page : ownedPages.Pages()) {
    CheckDataPage(page, owner, faults);
    used.insert(page);
  }
  for (const PageNumber page : UsageMap(*pager_, withRoom).Pages()) {
    if (!ownedPages.Contains(page)) faults.push_back(Name(page) + " is offered for rows but not owned");
  }
  for (const RowPointer map : {owned, withRoom}) {
    for (const PageNumber page : UsageMap(*pager_, map).BitmapPages()) used.insert(page);
  }
}

std::vector<std::string> TestTable::Faults() {
  std::vector<std::string> faults;
  std::multiset<PageNumber> used;
  std::set<PageNumber> mapPages;
  for (const PageNumber page : TableDefinitionPages(*pager_, definition_.page)) used.insert(page);
  CheckPages(definition_.ownedPages, definition_.freeSpacePages, definition_.page, used, faults);
  mapPages.insert(definition_.ownedPages.page);
  mapPages.insert(definition_.freeSpacePages.page);
  for (const LongValueMaps& maps : ReadTableDefinition(*pager_, definition_.page).longValueMaps) {
    if (maps.ownedPages.IsNone()) continue;
    CheckPages(maps.ownedPages, maps.freeSpacePages, data::kOwnerLongValues, used, faults);
    mapPages.insert(maps.ownedPages.page);
    mapPages.insert(maps.freeSpacePages.page);
  }
  used.insert(mapPages.begin(), mapPages.end());
  for (PageNumber page = kFirstPages; page < pager_->PageCount(); ++page) {
    const std::size_t owners = used.count(page) + (PageAllocator(*pager_).IsFree(page) ? 1 : 0);
    if (owners != 1) faults.push_back(Name(page) + " belongs to " + std::to_string(owners));
  }
  return faults;
}

}  // namespace tavi::access::test
