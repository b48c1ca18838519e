#pragma once

#include "access/sql/parse/Statement.h"
#include "access/sql/parse/TokenStream.h"

/// The grammar's rules for CREATE, ALTER and DROP, each from behind its first word on.
namespace tavi::access::sql {

Statement ReadCreate(TokenStream& stream);
Statement ReadAlter(TokenStream& stream);
Statement ReadDrop(TokenStream& stream);

}  // namespace tavi::access::sql
