#include "access/catalog/Check.h"

#include "access/catalog/TableCheck.h"

namespace tavi::access {

namespace {

void CheckTables(Database& database, CheckKind kind, PageOwners& owners, CheckReport& report) {
  std::vector<std::shared_ptr<Table>> tables;
  for (const CatalogEntry& entry : database.Tables()) {
    if (entry.isLinked) continue;
    report.Begin(CheckPart::Rows, entry.name);
    report.Guard("Table '" + entry.name + "'", [&] { tables.push_back(database.OpenTable(entry.name)); });
  }
  for (const std::shared_ptr<Table>& table : tables)
    TableCheck(database.GetPager(), *table, kind, owners, report).Run();
  for (const std::shared_ptr<Table>& table : tables) {
    report.Begin(CheckPart::Relationship, table->Name());
    CheckRelationships(database, *table, report);
  }
}

}  // namespace

CheckResult CheckFile(Database& database, CheckKind kind, const CheckProgress& progress) {
  CheckReport report(progress);
  report.Guard("The file", [&] {
    const ReadStatement statement(database.GetPager());
    report.Result().pages = database.GetPager().PageCount();
    if (database.GetPager().IsJet3()) {
      report.Add("The file is in the format of Access 97, which is only read and cannot be checked.");
      return;
    }
    PageOwners owners(database.GetPager(), report);
    CheckTables(database, kind, owners, report);
    report.Begin(CheckPart::File, "");
    owners.CheckMapPages(kind);
    if (kind == CheckKind::Strict) owners.ReportLeaks();
  });
  return std::move(report.Result());
}

std::vector<std::string> CheckDatabase(Database& database, CheckKind kind) {
  std::vector<std::string> texts;
  for (CheckFinding& finding : CheckFile(database, kind).findings) texts.push_back(std::move(finding.text));
  return texts;
}

}  // namespace tavi::access
