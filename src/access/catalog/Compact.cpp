// A file compacted in its place. The new one is made and checked beside the old one, the old one copied, then the new
// one renamed over it; so the name is never without a whole file. What lies where after each step, and what the next
// call makes of a run that was stopped there:
//
//                       NAME   NAME.compact   NAME.compact-old   the next call
//   nothing             old    -              -                  begins
//   new file written    old    new            -                  removes it and begins
//   old file copied     old    new            copy               removes both, the copy first, and begins
//   renamed             new    -              copy               gives the copy its name as the backup: done
//   copy named          new    -              -                  finds that nothing has changed: done
//
// A copy without a new file beside it therefore always is the backup of a file that has been replaced. The file is open
// for this user alone until it is replaced, which also brings in what a log beside it holds. It is read several times,
// and the new one is held in memory as a whole.
#include "access/catalog/Compact.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "access/file/EngineError.h"
#include "access/file/Replacement.h"
#include "platform/values/Error.h"

namespace tavi::access {

namespace {

constexpr char kNewFileEnding[] = ".compact";
constexpr char kCopyEnding[] = ".compact-old";
constexpr std::size_t kCopyChunk = std::size_t{1} << 20U;

/// One file while it is compacted.
class Compacting {
 public:
  Compacting(std::shared_ptr<FileSystem> fileSystem, const std::string& path, const CheckProgress& progress)
      : fileSystem_(std::move(fileSystem)),
        path_(fileSystem_->CanonicalPath(path)),
        newPath_(path_ + kNewFileEnding),
        copyPath_(path_ + kCopyEnding),
        progress_(progress),
        source_(Open(path_, true)) {}

  CompactResult Run() {
    // Somebody may have gone on with the new file since: then there is work to be done again, but the copy is a backup
    // all the same.
    if (HasUnnamedBackup()) {
      if (!IsWrittenSinceTheBackup()) return FinishFormerRun();
      NameBackup();
    }
    RemoveLeftovers();
    try {
      CheckSource();
      WriteNewFile();
      // Compacting a compacted file gives the same bytes, so calling it twice does no more than once.
      if (const auto former = FindFormerRun()) {
        RemoveLeftovers();
        return *former;
      }
      CheckNewFile();
      CopyOldFile();
      return Swap();
    } catch (...) {
      RemoveLeftoversQuietly();
      throw;
    }
  }

 private:
  std::unique_ptr<Pager> Open(const std::string& path, bool alone) {
    PagerOptions options;
    options.alone = alone;
    options.readOnly = !alone;
    return Pager::Open(fileSystem_, path, options);
  }

  /// Nobody else is compacting: whatever is there a crash left behind. The copy goes first, for good: alone it would be
  /// taken for the backup of a file that has been replaced.
  void RemoveLeftovers() {
    if (fileSystem_->Exists(copyPath_)) {
      fileSystem_->Remove(copyPath_);
      fileSystem_->SyncFolderOf(path_);
    }
    if (fileSystem_->Exists(newPath_)) fileSystem_->Remove(newPath_);
  }

  void RemoveLeftoversQuietly() noexcept {
    try {
      // The new file may have taken the place though what came behind that failed: the copy is then the backup.
      if (!HasUnnamedBackup()) RemoveLeftovers();
    } catch (...) {
      // The next call removes it.
    }
  }

  /// Says of a page that cannot be read just this; the check would begin with what follows from it.
  void ReadThrough(Database& database) {
    Pager& pager = database.GetPager();
    const ReadStatement statement(pager);
    try {
      for (PageNumber page = 0; page < pager.PageCount(); ++page) static_cast<void>(pager.Read(page));
    } catch (const Error& error) {
      RaiseFailure("'" + path_ + "' could not be compacted; it stays as it is. " + error.Description() +
                   " Check the disk, and try again.");
    }
  }

  /// Damage that a rebuild mends (indexes, counters) may be there; what would be lost in one makes it refuse.
  void CheckSource() {
    ReadThrough(source_);
    const CheckResult result = CheckFile(source_, CheckKind::Ordinary, progress_);
    hadBrokenRelationships_ =
        std::ranges::find(result.findings, CheckPart::Relationship, &CheckFinding::part) != result.findings.end();
    const auto hurt = std::ranges::find_if(result.findings, [](const CheckFinding& finding) {
      return finding.part == CheckPart::File || finding.part == CheckPart::Rows;
    });
    if (hurt == result.findings.end()) return;
    RaiseFailure("'" + path_ +
                 "' is damaged and was not compacted, because part of its contents would be lost: " + hurt->text);
  }

  void WriteNewFile() {
    // With the permissions of the old file from the beginning, before anything is in it.
    const std::vector<Page> pages = RebuildPages(source_);
    Pager::Create(*fileSystem_, newPath_, pages, path_);
  }

  /// Read from the disk, not from memory. Strict, since nothing that was just made may have leftovers of any kind; and
  /// then row by row against the old file.
  void CheckNewFile() {
    Database made(Open(newPath_, false));
    ReadThrough(made);
    const CheckResult result = CheckFile(made, CheckKind::Strict, progress_);
    if (!result.remarks.empty()) RaiseDifferent(result.remarks.front().text);
    for (const CheckFinding& finding : result.findings) {
      // Rows whose related row is missing are missed by nobody else; they are kept as they are.
      const bool wasBefore = finding.part == CheckPart::Relationship && hadBrokenRelationships_;
      if (!wasBefore) RaiseDifferent(finding.text);
    }
    const ReadStatement oldStatement(source_.GetPager());
    const ReadStatement newStatement(made.GetPager());
    for (const CatalogEntry& entry : source_.Tables()) {
      if (!entry.isLinked && !HaveSameRows(*source_.OpenTable(entry.name), *made.OpenTable(entry.name)))
        RaiseDifferent("The table '" + entry.name + "' reads differently.");
    }
  }

  [[noreturn]] void RaiseDifferent(const std::string& reason) const {
    RaiseFailure("'" + path_ + "' could not be compacted; it stays as it is. The new file was not right: " + reason);
  }

  void CopyOldFile() {
    const std::unique_ptr<File> old = fileSystem_->Open(path_, FileSystem::OpenMode::ReadOnly);
    result_.bytesBefore = CopyFile(*fileSystem_, *old, copyPath_, path_);
  }

  /// In this order: a stop between the steps leaves the new file, and its name, beside the old one, or the copy of the
  /// old one beside the new file, which then has only not got its name yet.
  CompactResult Swap() {
    result_.bytesAfter = SizeOf(newPath_);
    fileSystem_->SyncFolderOf(path_);
    ReplaceFile(*fileSystem_, newPath_, path_, source_.GetPager());
    NameBackup();
    return result_;
  }

  /// The last change of all; where a power failure comes before its flush the next call does it again.
  void NameBackup() {
    result_.backup = FreeBackupName();
    try {
      fileSystem_->Rename(copyPath_, result_.backup);
    } catch (const Error& error) {
      RaiseFailure("'" + path_ + "' is compacted, but the backup of what it was before has not got its name: " +
                   error.Description() + " It is '" + copyPath_ +
                   "'. Make room on the disk and compact the file once more, which names the backup.");
    }
    fileSystem_->SyncFolderOf(path_);
  }

  /// True when a run was stopped after the new file had taken the place: its copy of the old one has not got its name.
  [[nodiscard]] bool HasUnnamedBackup() const {
    return fileSystem_->Exists(copyPath_) && !fileSystem_->Exists(newPath_);
  }

  /// The copy is made after the new file was written, and renaming keeps a file's time: so the file is the later one of
  /// the two only when somebody has changed it.
  [[nodiscard]] bool IsWrittenSinceTheBackup() {
    const auto stamp = [&](const std::string& path) {
      return fileSystem_->Open(path, FileSystem::OpenMode::ReadOnly)->Times().written;
    };
    return stamp(path_) > stamp(copyPath_);
  }

  /// What a run gave that has left the file as it is now: compacting it once more would change nothing, and keep a
  /// second backup of it.
  /// The last backup tells how large the file was before.
  [[nodiscard]] std::optional<CompactResult> FindFormerRun() {
    CompactResult former;
    for (unsigned number = 1; fileSystem_->Exists(BackupName(number)); ++number) former.backup = BackupName(number);
    if (former.backup.empty() || !HasSameBytes(newPath_)) return std::nullopt;
    former.bytesBefore = SizeOf(former.backup);
    former.bytesAfter = SizeOf(path_);
    return former;
  }

  /// True when another file holds the same bytes as the one to be compacted.
  [[nodiscard]] bool HasSameBytes(const std::string& other) {
    const std::unique_ptr<File> one = fileSystem_->Open(path_, FileSystem::OpenMode::ReadOnly);
    const std::unique_ptr<File> two = fileSystem_->Open(other, FileSystem::OpenMode::ReadOnly);
    const std::uint64_t size = one->Size();
    if (two->Size() != size) return false;
    std::vector<std::uint8_t> oneChunk;
    std::vector<std::uint8_t> twoChunk;
    // A megabyte of each at a time: files may be larger than memory has room for twice.
    for (std::uint64_t done = 0; done < size; done += oneChunk.size()) {
      oneChunk.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kCopyChunk, size - done)));
      twoChunk.resize(oneChunk.size());
      one->ReadAt(done, oneChunk);
      two->ReadAt(done, twoChunk);
      if (oneChunk != twoChunk) return false;
    }
    return true;
  }

  [[nodiscard]] std::uint64_t SizeOf(const std::string& path) {
    return fileSystem_->Open(path, FileSystem::OpenMode::ReadOnly)->Size();
  }

  /// All that it has left to do.
  CompactResult FinishFormerRun() {
    result_.bytesBefore = SizeOf(copyPath_);
    result_.bytesAfter = SizeOf(path_);
    NameBackup();
    return result_;
  }

  /// The number goes before the ending, so that programs still know the kind of the file.
  [[nodiscard]] std::string BackupName(unsigned number) const {
    const std::size_t nameStart = path_.find_last_of("/\\") + 1;  // 0 when there is no folder
    const std::size_t dot = path_.find_last_of('.');
    const bool hasEnding = dot != std::string::npos && dot > nameStart;
    std::string name = hasEnding ? path_.substr(0, dot) : path_;
    name.append(".backup-").append(std::to_string(number));
    return hasEnding ? name + path_.substr(dot) : name;
  }

  [[nodiscard]] std::string FreeBackupName() const {
    unsigned number = 1;
    while (fileSystem_->Exists(BackupName(number))) ++number;
    return BackupName(number);
  }

  std::shared_ptr<FileSystem> fileSystem_;
  std::string path_;
  std::string newPath_;
  std::string copyPath_;
  CheckProgress progress_;
  Database source_;  // holds the file until the end of this object's life
  bool hadBrokenRelationships_ = false;
  CompactResult result_;
};

}  // namespace

CompactResult CompactFile(const std::shared_ptr<FileSystem>& fileSystem, const std::string& path,
                          const CheckProgress& progress) {
  return Compacting(fileSystem, path, progress).Run();
}

}  // namespace tavi::access
