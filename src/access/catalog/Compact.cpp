#include "access/catalog/Compact.h"

#include <algorithm>
#include <vector>

#include "access/catalog/Dump.h"
#include "access/catalog/Rebuild.h"
#include "access/file/EngineError.h"
#include "access/file/ForeignUse.h"
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
    RemoveLeftovers();
    try {
      CheckSource();
      WriteNewFile();
      CheckNewFile();
      CopyOldFile();
      return Swap();
    } catch (...) {
      RemoveQuietly(newPath_);
      RemoveQuietly(copyPath_);
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

  /// Nobody else is compacting: whatever is there a crash left behind.
  void RemoveLeftovers() {
    for (const std::string& leftover : {newPath_, copyPath_})
      if (fileSystem_->Exists(leftover)) fileSystem_->Remove(leftover);
  }

  void RemoveQuietly(const std::string& path) noexcept {
    try {
      if (fileSystem_->Exists(path)) fileSystem_->Remove(path);
    } catch (...) {
      // The next call removes it.
    }
  }

  void CheckSource() {
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
    const std::vector<Page> pages = RebuildPages(source_);
    Pager::Create(*fileSystem_, newPath_, pages);
    fileSystem_->CopyPermissions(path_, newPath_);
  }

  void CheckNewFile() {
    Database made(Open(newPath_, false));
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
      if (!entry.isLinked && TableText(source_, entry.name) != TableText(made, entry.name))
        RaiseDifferent("The table '" + entry.name + "' reads differently.");
    }
  }

  [[noreturn]] void RaiseDifferent(const std::string& reason) const {
    RaiseFailure("'" + path_ + "' could not be compacted; it stays as it is. The new file was not right: " + reason);
  }

  void CopyOldFile() {
    const std::unique_ptr<File> from = fileSystem_->Open(path_, FileSystem::OpenMode::ReadOnly);
    const std::unique_ptr<File> to = fileSystem_->Open(copyPath_, FileSystem::OpenMode::CreateNew);
    result_.bytesBefore = from->Size();
    std::vector<std::uint8_t> chunk;
    for (std::uint64_t done = 0; done < result_.bytesBefore; done += chunk.size()) {
      chunk.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kCopyChunk, result_.bytesBefore - done)));
      from->ReadAt(done, chunk);
      to->WriteAt(done, chunk);
    }
    to->Sync();
    fileSystem_->CopyPermissions(path_, copyPath_);
  }

  CompactResult Swap() {
    if (const auto foreign = FindForeignUse(*fileSystem_, path_))
      RaiseFailure("Could not use '" + path_ + "'; file already in use. " + foreign->Describe() +
                   "; close the database there and try again.");
    result_.bytesAfter = fileSystem_->Open(newPath_, FileSystem::OpenMode::ReadOnly)->Size();
    result_.backup = FreeBackupName();
    fileSystem_->Rename(copyPath_, result_.backup);
    fileSystem_->SyncFolderOf(path_);
    TakeItsPlace();
    fileSystem_->SyncFolderOf(path_);
    source_.GetPager().Close();
    return result_;
  }

  void TakeItsPlace() {
    try {
      fileSystem_->Rename(newPath_, path_);
    } catch (const Error&) {
      // Some systems let no open file be replaced. They would not let us overlook anybody who opens it now, either.
      source_.GetPager().Close();
      fileSystem_->Rename(newPath_, path_);
    }
  }

  [[nodiscard]] std::string FreeBackupName() const {
    const std::size_t nameStart = path_.find_last_of("/\\") + 1;  // 0 when there is no folder
    const std::size_t dot = path_.find_last_of('.');
    const bool hasEnding = dot != std::string::npos && dot > nameStart;
    const std::string stem = hasEnding ? path_.substr(0, dot) : path_;
    const std::string ending = hasEnding ? path_.substr(dot) : std::string();
    for (int number = 1;; ++number) {
      std::string name = stem;
      name.append(".backup-").append(std::to_string(number)).append(ending);
      if (!fileSystem_->Exists(name)) return name;
    }
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
