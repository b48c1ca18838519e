#include "access/table/support/RealFiles.h"

#include <algorithm>

#include "SourceDirectory.h"
#include "access/file/Format.h"
#include "access/table/TableRows.h"

namespace tavi::access::test {

namespace fs = std::filesystem;

fs::path RealFilesFolder() {
  const fs::path folder = fs::path(TAVI_SAMPLE_FILES) / "access-files";
  return fs::exists(folder / "expected") ? folder : fs::path();
}

std::vector<std::string> RealFileNames() {
  std::vector<std::string> names;
  if (RealFilesFolder().empty()) return names;
  for (const fs::directory_entry& entry : fs::directory_iterator(RealFilesFolder())) {
    if (entry.path().extension() == ".mdb") names.push_back(entry.path().stem().string());
  }
  std::ranges::sort(names);
  return names;
}

std::unique_ptr<Pager> OpenRealFile(const std::string& name) {
  PagerOptions options;
  options.readOnly = true;
  return Pager::Open(NativeFileSystem(), (RealFilesFolder() / (name + ".mdb")).string(), options);
}

std::vector<NamedTable> ListTables(Pager& pager) {
  const TableDefinition objects = ReadTableDefinition(pager, format::kObjectsTablePage);
  const auto position = [&objects](std::string_view name) {
    return static_cast<std::size_t>(objects.FindColumn(name) - objects.columns.data());
  };
  const std::size_t id = position("Id");
  const std::size_t name = position("Name");
  const std::size_t type = position("Type");
  const std::size_t flags = position("Flags");
  std::vector<NamedTable> tables;
  const TableRows rows(pager, objects);
  rows.Walk([&](RowPointer row) {
    const RowValues values = rows.Read(row);
    if (std::get<std::int16_t>(values.at(type)) == format::catalog::kTypeTable) {
      const auto stored = static_cast<std::uint32_t>(std::get<std::int32_t>(values.at(flags)));
      tables.push_back({std::get<std::string>(values.at(name)),
                        static_cast<PageNumber>(std::get<std::int32_t>(values.at(id))),
                        (stored & format::catalog::kFlagSystemMask) != 0});
    }
    return true;
  });
  return tables;
}

}  // namespace tavi::access::test
