#include "host/tools/Compact.h"

#include "access/catalog/Compact.h"
#include "host/tools/CheckProgressBar.h"
#include "util/Paths.h"

namespace tavi::host {

int Compact(const Context& context, const std::string& file) {
  const std::string path = NativePath(file.empty() ? context.AccessFile() : file);
  access::CompactResult result;
  {
    CheckProgressBar bar(context);
    result = access::CompactFile(access::NativeFileSystem(), path, bar.Progress());
  }
  Table table({"What", "Value"});
  table.Add({std::string("File"), path});
  table.Add({std::string("Bytes before"), static_cast<std::int64_t>(result.bytesBefore)});
  table.Add({std::string("Bytes after"), static_cast<std::int64_t>(result.bytesAfter)});
  table.Add({std::string("Backup"), result.backup});
  context.Write(table);
  return kSucceeded;
}

}  // namespace tavi::host
