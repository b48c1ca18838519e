#pragma once

#include "access/sql/parse/Statement.h"
#include "access/sql/parse/TokenStream.h"

/// The grammar's rules for INSERT, UPDATE and DELETE, each from behind its first word on.
namespace tavi::access::sql {

Insert ReadInsert(TokenStream& stream);
Update ReadUpdate(TokenStream& stream);
Delete ReadDelete(TokenStream& stream);

}  // namespace tavi::access::sql
