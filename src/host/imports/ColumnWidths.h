#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "store/cDatabase.h"

namespace tavi::host {

/// How many characters the text columns of one table take, as the file says.
class ColumnWidths {
 public:
  /// Reads the columns of a table of the open file.
  ColumnWidths(cDatabase& store, const std::string& table);
  /// Raises InvalidArgument ("WHERE: COLUMN ...") when a text is longer than its column takes as it will be stored.
  void Require(const std::string& where, const std::string& column, const std::string& text) const;

 private:
  std::map<std::string, std::int32_t> widths_;
};

}  // namespace tavi::host
