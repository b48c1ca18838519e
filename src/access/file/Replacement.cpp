#include "access/file/Replacement.h"

#include "access/file/EngineError.h"
#include "access/file/ForeignUse.h"
#include "platform/values/Error.h"

namespace tavi::access {

void ReplaceFile(FileSystem& fileSystem, const std::string& newPath, const std::string& path, Pager& holder) {
  if (const auto foreign = FindForeignUse(fileSystem, path)) {
    RaiseFailure("Could not use '" + path + "'; file already in use. " + foreign->Describe() +
                 "; close the database there and try again.");
  }
  try {
    fileSystem.Rename(newPath, path);
  } catch (const Error&) {
    // Some systems let no open file be replaced. They would not let us overlook anybody who opens it now, either.
    holder.Close();
    fileSystem.Rename(newPath, path);
  }
  fileSystem.SyncFolderOf(path);
  holder.Close();
}

std::string PlaceFile(FileSystem& fileSystem, const std::string& newPath, const std::string& path) {
  const std::string log = path + ".redo";
  std::string aside;
  if (fileSystem.Exists(log)) {
    for (unsigned number = 1; aside.empty() || fileSystem.Exists(aside); ++number) {
      aside = log + "-setaside-" + std::to_string(number);
    }
    fileSystem.Rename(log, aside);
  }
  fileSystem.Rename(newPath, path);
  fileSystem.SyncFolderOf(path);
  return aside;
}

}  // namespace tavi::access
