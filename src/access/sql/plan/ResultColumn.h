#pragma once

#include <string>

#include "platform/ado/Provider.h"

namespace tavi::access::sql {

/// A column of a result: its name as record sets give it, the table that it comes from (empty for an expression) with
/// its name there, and its type.
struct ResultColumn {
  std::string name;
  std::string table;
  std::string columnName;
  ado::DataType type = ado::DataType::WChar;
};

}  // namespace tavi::access::sql
