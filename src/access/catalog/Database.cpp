// The database as rooms above see it. It owns pager and catalogue, which live and end together, and passes every change
// on to the file of its subject (DefinitionChanges.h says which); nothing is decided here but what counts as a table.
#include "access/catalog/Database.h"

#include "access/catalog/Catalog.h"
#include "access/catalog/ChangeErrors.h"
#include "access/catalog/DefinitionChanges.h"
#include "access/catalog/NewFile.h"

namespace tavi::access {

// Hides the catalogue from the rooms above, which know tables alone.
class Database::Implementation {
 public:
  explicit Implementation(std::unique_ptr<Pager> opened) : pager(std::move(opened)), catalog(*pager) {}

  std::unique_ptr<Pager> pager;
  // Refers to the pager, so it comes behind it and goes before it.
  Catalog catalog;
};

Database::Database(std::unique_ptr<Pager> pager)
    : implementation_(std::make_unique<Implementation>(std::move(pager))) {}

Database::~Database() = default;

// A file that is there is never written over: Pager::Create refuses.
void Database::CreateFile(FileSystem& fileSystem, const std::string& path, Date now) {
  Pager::Create(fileSystem, path, MakeNewFile(now));
}

Pager& Database::GetPager() {
  return *implementation_->pager;
}

// Stored queries, forms and containers are objects too, and left out.
std::vector<CatalogEntry> Database::Tables() {
  std::vector<CatalogEntry> entries;
  for (const CatalogObject& object : implementation_->catalog.Objects()) {
    if (!object.IsTable() && !object.IsLinked()) continue;
    CatalogEntry entry;
    entry.name = object.name;
    // The number of a link is no page.
    entry.page = object.IsTable() ? static_cast<PageNumber>(object.id) : 0;
    entry.isSystem = object.IsSystem();
    entry.isLinked = object.IsLinked();
    entries.push_back(std::move(entry));
  }
  return entries;
}

std::vector<Relationship> Database::Relationships() {
  return implementation_->catalog.Relationships();
}

std::shared_ptr<Table> Database::OpenTable(std::string_view name) {
  return implementation_->catalog.OpenTable(name);
}

// Links and stored queries have names of the same kind and are not found; OpenTable says what they are.
std::shared_ptr<Table> Database::FindTable(std::string_view name) {
  const CatalogObject* object = implementation_->catalog.FindNamed(name);
  if (object == nullptr || !object->IsTable()) return nullptr;
  return implementation_->catalog.OpenTable(name);
}

void Database::CreateTable(const TableDesign& design, Date now) {
  access::CreateTable(implementation_->catalog, design, now);
}

void Database::DropTable(std::string_view name) {
  access::DropTable(implementation_->catalog, name);
}

void Database::ChangeColumn(std::string_view table, const ColumnDesign& column, std::optional<Date> now) {
  access::ChangeColumn(implementation_->catalog, table, column, now);
}

void Database::AddColumn(std::string_view table, const ColumnDesign& column, std::optional<Date> now) {
  access::AddColumn(implementation_->catalog, table, column, now);
}

void Database::DropColumn(std::string_view table, std::string_view column, std::optional<Date> now) {
  access::DropColumn(implementation_->catalog, table, column, now);
}

void Database::CreateIndex(std::string_view table, const IndexDesign& design, std::optional<Date> now) {
  access::CreateIndex(implementation_->catalog, table, design, now);
}

void Database::DropIndex(std::string_view table, std::string_view index, std::optional<Date> now) {
  access::DropIndex(implementation_->catalog, table, index, now);
}

void Database::CreateRelationship(const Relationship& relationship, Date now) {
  access::CreateRelationship(implementation_->catalog, relationship, now);
}

void Database::DropRelationship(std::string_view name) {
  access::DropRelationship(implementation_->catalog, name);
}

}  // namespace tavi::access
