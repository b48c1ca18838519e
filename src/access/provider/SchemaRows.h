#pragma once

#include <memory>

#include "access/catalog/Database.h"
#include "access/sql/run/ResultSet.h"
#include "platform/ado/Provider.h"

namespace tavi::access {

/// The rows that describe a file, ordered by table and column or index name. System tables are listed by Tables only. A
/// table whose definition is damaged is left out of Columns and Indexes: using it raises the error that says so.
///   Columns: TABLE_NAME, COLUMN_NAME, ORDINAL_POSITION (from 1), DATA_TYPE, CHARACTER_MAXIMUM_LENGTH (0: no limit;
///   null
///     for other than texts and bytes), IS_NULLABLE, COLUMN_HASDEFAULT, COLUMN_DEFAULT
///   Tables: TABLE_NAME, TABLE_TYPE ("TABLE", "SYSTEM TABLE" or "LINK")
///   Indexes: TABLE_NAME, INDEX_NAME, PRIMARY_KEY, UNIQUE, ORDINAL_POSITION (from 1), COLUMN_NAME, COLLATION (1
///     ascending, 2 descending)
std::unique_ptr<sql::ResultSet> ListSchema(Database& database, ado::SchemaKind kind);

}  // namespace tavi::access
