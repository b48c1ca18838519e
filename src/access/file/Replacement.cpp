#include "access/file/Replacement.h"

#include <algorithm>
#include <vector>

#include "access/file/EngineError.h"
#include "access/file/ForeignUse.h"
#include "platform/values/Error.h"

namespace tavi::access {

namespace {

constexpr std::uint64_t kBytesAtOnce = std::uint64_t{1} << 20U;

}  // namespace

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

std::uint64_t CopyFile(FileSystem& fileSystem, File& from, const std::string& to, const std::string& permissionsOf) {
  const std::unique_ptr<File> target = fileSystem.Open(to, FileSystem::OpenMode::CreateNew);
  if (!permissionsOf.empty()) fileSystem.CopyPermissions(permissionsOf, to);
  const std::uint64_t size = from.Size();
  std::vector<std::uint8_t> chunk;
  for (std::uint64_t done = 0; done < size; done += chunk.size()) {
    chunk.resize(static_cast<std::size_t>(std::min(kBytesAtOnce, size - done)));
    from.ReadAt(done, chunk);
    target->WriteAt(done, chunk);
  }
  target->Sync();
  return size;
}

}  // namespace tavi::access
