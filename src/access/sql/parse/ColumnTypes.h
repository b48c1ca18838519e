#pragma once

#include "access/catalog/Database.h"
#include "access/sql/parse/TokenStream.h"

namespace tavi::access::sql {

/// Reads a type as CREATE TABLE and ALTER TABLE name it into `column`: the word, and behind it, where the type has
/// them, a length "(n)" or "(precision, scale)". Raises ProviderSyntax for unknown words and sizes out of range.
void ReadColumnType(TokenStream& stream, ColumnDesign& column);

}  // namespace tavi::access::sql
