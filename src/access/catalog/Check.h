#pragma once

#include <string>
#include <vector>

#include "access/catalog/Database.h"

namespace tavi::access {

enum class CheckKind {
  Ordinary,  ///< what is wrong in any file
  Strict     ///< also what other programs leave behind but this one never does: pages and long values that nobody uses,
             ///< counters of system tables that are off, automatic numbers above the counter
};

/// Walks every page, map, row, long value and index of a file and says what does not agree: one line for each finding,
/// with page, table or index and the reason; none when all is well. It never raises for damage, and stops at 1000
/// findings. Joins the pager's open statement or makes a read statement.
std::vector<std::string> CheckDatabase(Database& database, CheckKind kind = CheckKind::Ordinary);

}  // namespace tavi::access
