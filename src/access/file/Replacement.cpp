#include "access/file/Replacement.h"

#include <algorithm>
#include <vector>

#include "access/file/EngineError.h"
#include "access/file/ForeignUse.h"
#include "platform/values/Error.h"

// A file takes the place of another one by one rename: whoever looks sees the old file or the new one, whole. The new
// name is durable only when the folder has been flushed; until then a power cut brings the old file back, which is
// whole as well. Both files have to be on one disk, which is why new files are made beside the old ones.

namespace tavi::access {

namespace {

constexpr std::uint64_t kBytesAtOnce = std::uint64_t{1} << 20U;

}  // namespace

void ReplaceFile(FileSystem& fileSystem, const std::string& newPath, const std::string& path, Pager& holder) {
  // The holder keeps our own users out; another program is seen by its lock file alone.
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

// A log of that name would be taken for the new file's own by whoever opens it; it does not belong to it, and is kept
// for the person who misses something.
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
  // A file of any size in a megabyte of memory.
  for (std::uint64_t done = 0; done < size; done += chunk.size()) {
    chunk.resize(static_cast<std::size_t>(std::min(kBytesAtOnce, size - done)));
    from.ReadAt(done, chunk);
    target->WriteAt(done, chunk);
  }
  target->Sync();
  return size;
}

}  // namespace tavi::access
