#pragma once

#include <functional>
#include <string>
#include <vector>

#include "access/catalog/Database.h"

namespace tavi::access {

enum class CheckKind {
  Ordinary,  ///< what is wrong in any file
  Strict     ///< also remarks on what other programs leave behind but this one never does: pages and long values that
             ///< nobody uses, counters of system tables that are off, automatic numbers above the counter, indexes
             ///< that are not listed by name, parts of long values on pages that are offered for others
};

/// What a finding is about. Where no finding is about the file or rows the rows are whole, and a rebuild of the file
/// (see CompactFile) mends indexes and counters; a relationship may look broken only because an index that it uses is.
enum class CheckPart {
  File,  ///< the header, the catalogue, the maps of pages
  Rows,  ///< definition, rows and long values of a table
  Index,
  Counter,
  Relationship
};

/// One thing that does not agree.
struct CheckFinding {
  CheckPart part = CheckPart::File;
  std::string table;  ///< empty when it is about the file
  std::string text;   ///< what is wrong, with page, table or index: a sentence
};

/// What a check looked at and found.
struct CheckResult {
  std::vector<CheckFinding> findings;  ///< damage
  std::vector<CheckFinding> remarks;   ///< what does no harm; the file is sound all the same
  bool isCutShort = false;             ///< there is more to find than is listed
  std::size_t pages = 0;
  std::size_t tables = 0;  ///< the system's included, like the next two
  std::size_t rows = 0;
  std::size_t indexes = 0;
};

/// Told how many of the file's pages have been looked at, and in which table.
using CheckProgress = std::function<void(std::size_t done, std::size_t total, const std::string& table)>;

/// Walks every page, map, row, long value and index of a file and says what does not agree; nothing when all is well.
/// It never raises for damage, and stops at 1000 findings and 1000 remarks. A file of Access 97 raises
/// ProviderPermission: it is only read here and cannot be checked. Joins the pager's open statement or makes a read
/// statement.
CheckResult CheckFile(Database& database, CheckKind kind, const CheckProgress& progress = {});

/// The texts of the findings and remarks alone.
std::vector<std::string> CheckDatabase(Database& database, CheckKind kind = CheckKind::Ordinary);

}  // namespace tavi::access
