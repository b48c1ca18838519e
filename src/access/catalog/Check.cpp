#include "access/catalog/Check.h"

#include "access/catalog/TableCheck.h"

namespace tavi::access {

namespace {

void CheckTables(Database& database, CheckKind kind, PageOwners& owners, CheckReport& report) {
  std::vector<std::shared_ptr<Table>> tables;
  for (const CatalogEntry& entry : database.Tables()) {
    if (entry.isLinked) continue;
    report.Guard("Table '" + entry.name + "'", [&] { tables.push_back(database.OpenTable(entry.name)); });
  }
  for (const std::shared_ptr<Table>& table : tables)
    TableCheck(database.GetPager(), *table, kind, owners, report).Run();
  for (const std::shared_ptr<Table>& table : tables) CheckRelationships(database, *table, report);
}

}  // namespace

std::vector<std::string> CheckDatabase(Database& database, CheckKind kind) {
  CheckReport report;
  report.Guard("The file", [&] {
    const ReadStatement statement(database.GetPager());
    if (database.GetPager().IsJet3()) {
      report.Add("The file is in the format of Access 97, which is only read and cannot be checked.");
      return;
    }
    PageOwners owners(database.GetPager(), report);
    CheckTables(database, kind, owners, report);
    if (kind == CheckKind::Strict) owners.ReportLeaks();
  });
  return report.Findings();
}

}  // namespace tavi::access
