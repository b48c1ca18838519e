#pragma once

#include <memory>

#include "access/sql/parse/Statement.h"
#include "access/sql/parse/TokenStream.h"

/// The grammar's rules for SELECT and its sources.
namespace tavi::access::sql {

/// Reads a SELECT with its unions, from the word SELECT on.
std::shared_ptr<Select> ReadSelect(TokenStream& stream);
/// Reads the tables behind FROM or UPDATE: a list of tables, joins and sub-selects.
std::unique_ptr<Source> ReadSources(TokenStream& stream);

}  // namespace tavi::access::sql
