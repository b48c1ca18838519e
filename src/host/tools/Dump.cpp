#include "host/tools/Dump.h"

#include <filesystem>
#include <fstream>

#include "host/dump/DatabaseDump.h"
#include "host/text/PathText.h"
#include "host/tools/OpenFile.h"
#include "platform/values/Error.h"
#include "util/Paths.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void RefuseFolder(const std::string& folder, const std::string& why) {
  throw Error(ErrorNumber::InvalidArgument, "tavi", "the folder " + folder + " " + why);
}

void MakeFolder(const std::string& folder) {
  std::error_code code = MakeFolders(folder);
  if (code) RefuseFolder(folder, "cannot be made: " + ReasonOf(code));
  const bool isEmpty = NamesIn(folder, code).empty();
  if (code) RefuseFolder(folder, "cannot be read: " + ReasonOf(code));
  if (!isEmpty)
    RefuseFolder(folder,
                 "is not empty; name a new one, so that no other file is taken for a "
                 "table of this dump");
}

void WriteFile(const fs::path& path, const std::string& text) {
  std::ofstream stream(path, std::ios::binary);
  stream << text;
  stream.close();
  if (!stream)
    throw Error(ErrorNumber::InvalidArgument, "tavi", TextOf(path) + " cannot be written; is the disk full?");
}

}  // namespace

int Dump(const Context& context, const std::string& file, const std::string& folder) {
  const std::unique_ptr<access::Database> database = OpenToRead(context, file);
  const std::string target = AbsolutePath(NativePath(folder));
  MakeFolder(target);
  DumpDatabase(*database, [&](const std::string& name, const std::string& text) {
    WriteFile(PathOf(target) / PathOf(NativePath(name)), text);
  });
  return kSucceeded;
}

}  // namespace tavi::host
