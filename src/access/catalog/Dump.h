#pragma once

#include <functional>
#include <string>

#include "access/catalog/Database.h"

namespace tavi::access {

/// The contents of a database as texts that tell all that its user tables hold, in an order that does not depend on
/// where things lie in the file: two files with the same contents give the same texts, and so do other readers that
/// write this form. The texts are UTF-8, their lines end in LF.
///
///   schema.json   the version of the format, tables with columns and indexes, relationships, names of links
///   TABLE.tsv     the names of the columns in one line, then a line for each row, sorted by bytes; values as TsvText
///                 writes them, with a tab between. The name of the file is the table's; bytes other than letters,
///                 digits, space and ._-() become %XX. A name of more than 255 bytes is cut, and ends in ~ and
///                 sixteen digits that tell it from others; schema.json names the file of each table.
///
/// Calls `write` with the name and the text of each. Joins the pager's open statement or makes a read statement.
/// Raises ProviderFailure where the file is damaged.
void DumpDatabase(Database& database,
                  const std::function<void(const std::string& name, const std::string& text)>& write);

/// The text of one table alone.
[[nodiscard]] std::string TableText(Database& database, const std::string& table);

}  // namespace tavi::access
