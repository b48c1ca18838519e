#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "access/file/Pager.h"
#include "access/table/TableDefinition.h"

namespace tavi::access::test {

/// The folder of files that Access has written, with their expected contents; empty when it is not there.
[[nodiscard]] std::filesystem::path RealFilesFolder();
/// The names of the files, without their extension.
[[nodiscard]] std::vector<std::string> RealFileNames();
/// Opens one of the files for reading.
[[nodiscard]] std::unique_ptr<Pager> OpenRealFile(const std::string& name);

struct NamedTable {
  std::string name;
  PageNumber page = 0;
  bool isSystem = false;
};
/// The tables of a file as its catalogue table lists them. Needs an open statement.
[[nodiscard]] std::vector<NamedTable> ListTables(Pager& pager);

}  // namespace tavi::access::test
