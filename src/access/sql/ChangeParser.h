#pragma once

#include "access/sql/Statement.h"
#include "access/sql/TokenStream.h"

/// The grammar's rules for INSERT, UPDATE and DELETE, each from behind its first word on.
namespace tavi::access::sql {

Insert ReadInsert(TokenStream& stream);
Update ReadUpdate(TokenStream& stream);
Delete ReadDelete(TokenStream& stream);

}  // namespace tavi::access::sql
