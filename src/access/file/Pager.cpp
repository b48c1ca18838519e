#include "access/file/Pager.h"

#include <algorithm>
#include <vector>

#include "access/file/DatabaseHeader.h"
#include "access/file/EngineError.h"
#include "access/file/FilePager.h"
#include "access/file/Format.h"

namespace tavi::access {

namespace {

// Pages that are written at once, 256 KB.
constexpr std::size_t kPagesPerWrite = 64;
// A file is replaced when it is compacted, which nobody does twice in a moment.
constexpr int kMostAttempts = 5;

/// Page 0 is never encoded; the others with the key XOR their number.
void WritePages(File& file, std::span<const Page> pages, std::uint32_t databaseKey) {
  std::vector<std::uint8_t> chunk;
  chunk.reserve(kPagesPerWrite * kPageSize);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    chunk.insert(chunk.end(), pages[i].All().begin(), pages[i].All().end());
    if (databaseKey != 0 && i != format::kHeaderPage) {
      ApplyRc4(databaseKey ^ static_cast<PageNumber>(i), std::span(chunk).last(kPageSize));
    }
    if (chunk.size() < kPagesPerWrite * kPageSize && i + 1 < pages.size()) continue;
    file.WriteAt((i + 1) * kPageSize - chunk.size(), chunk);
    chunk.clear();
  }
}

}  // namespace

std::unique_ptr<Pager> Pager::Open(const std::shared_ptr<FileSystem>& fileSystem, const std::string& path,
                                   const PagerOptions& options) {
  if (!fileSystem->Exists(path)) RaiseFailure("Could not find file '" + path + "'.");
  // One deadline for all attempts.
  const LockDeadline deadline(*fileSystem, options.lockTimeout);
  for (int attempt = 1;; ++attempt) {
    try {
      return std::make_unique<FilePager>(fileSystem, path, options, deadline);
    } catch (const FileWasReplaced&) {
      if (attempt == kMostAttempts)
        RaiseFailure("Could not open '" + path + "': it is being replaced by other files again and again.");
    }
  }
}

void Pager::Create(FileSystem& fileSystem, const std::string& path, std::span<const Page> pages,
                   const std::string& permissionsOf) {
  // Everything that can be refused is refused before there is a file.
  if (pages.empty() || pages.size() > format::kMaximumPageCount) {
    RaiseFailure("Could not create '" + path + "': an Access database cannot have " + std::to_string(pages.size()) +
                 " pages.");
  }
  if (fileSystem.Exists(path)) RaiseFailure("Database '" + path + "' already exists.");
  // Says that the pages begin like a database, and gives the key, before there is a file.
  const DatabaseHeader header = DecodeHeader(pages.front().All(), pages.size() * kPageSize, path);
  auto file = fileSystem.Open(path, FileSystem::OpenMode::CreateNew);
  try {
    // While the file is empty: nobody reads what he may not, not even for a moment.
    if (!permissionsOf.empty()) fileSystem.CopyPermissions(permissionsOf, path);
    WritePages(*file, pages, header.databaseKey);
    // First the content, then its name: a file that is found after a power cut is whole.
    file->Sync();
    file.reset();
    fileSystem.SyncFolderOf(path);
  } catch (...) {
    file.reset();
    fileSystem.Remove(path);
    throw;
  }
}

}  // namespace tavi::access
