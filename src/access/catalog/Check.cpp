// The check of a file: every table with its indexes, then relationships, then what belongs to the file as a whole. That
// comes last, because only then all owners of pages and all usage maps have been named.
#include "access/catalog/Check.h"

#include "access/catalog/TableCheck.h"
#include "access/file/EngineError.h"

namespace tavi::access {

namespace {

void CheckTables(Database& database, PageOwners& owners, CheckReport& report) {
  std::vector<std::shared_ptr<Table>> tables;
  for (const CatalogEntry& entry : database.Tables()) {
    if (entry.isLinked) continue;
    report.Begin(CheckPart::Rows, entry.name);
    // A table that cannot be opened is one finding, and its pages are lost room to a strict check.
    report.Guard("Table '" + entry.name + "'", [&] { tables.push_back(database.OpenTable(entry.name)); });
  }
  // All are opened first, so that one whose definition is damaged is found before the long part begins; relationships
  // follow, as they look into other tables than their own.
  for (const std::shared_ptr<Table>& table : tables) TableCheck(database.GetPager(), *table, owners, report).Run();
  for (const std::shared_ptr<Table>& table : tables) {
    report.Begin(CheckPart::Relationship, table->Name());
    CheckRelationships(database, *table, report);
  }
}

}  // namespace

CheckResult CheckFile(Database& database, CheckKind kind, const CheckProgress& progress) {
  if (database.GetPager().IsJet3()) {
    throw Error(ErrorNumber::ProviderPermission, kErrorSource,
                "'" + database.GetPager().Path() +
                    "' is in the format of Access 97, which is only read here and cannot be checked. Nothing is known "
                    "to be wrong with it; convert it in Access to check it, or read it with 'tavi dump'.");
  }
  CheckReport report(kind, progress);
  report.Guard("The file", [&] {
    // One statement for all, so that what is compared is of one moment although others write meanwhile.
    const ReadStatement statement(database.GetPager());
    report.Result().pages = database.GetPager().PageCount();
    PageOwners owners(database.GetPager(), report);
    CheckTables(database, owners, report);
    // Pages of maps are shared by tables, so this is about the file.
    report.Begin(CheckPart::File, "");
    owners.CheckMapPages();
    if (report.IsStrict()) owners.ReportLeaks();
  });
  return std::move(report.Result());
}

std::vector<std::string> CheckDatabase(Database& database, CheckKind kind) {
  std::vector<std::string> texts;
  CheckResult result = CheckFile(database, kind);
  for (CheckFinding& finding : result.findings) texts.push_back(std::move(finding.text));
  for (CheckFinding& remark : result.remarks) texts.push_back(std::move(remark.text));
  return texts;
}

}  // namespace tavi::access
