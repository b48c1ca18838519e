#include "access/file/support/InterceptedFileSystem.h"

#include <utility>

namespace tavi::access::test {

namespace {

using Operation = InterceptedFileSystem::Operation;

class InterceptedFile final : public File {
 public:
  InterceptedFile(InterceptedFileSystem& system, std::unique_ptr<File> inner, std::string path)
      : system_(system), inner_(std::move(inner)), path_(std::move(path)) {}

  void ReadAt(std::uint64_t offset, std::span<std::uint8_t> target) override {
    Ask(Operation::Read);
    inner_->ReadAt(offset, target);
  }
  void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> source) override {
    system_.Before(Operation::Write, path_, [&] { inner_->WriteAt(offset, source.first(source.size() / 2)); });
    inner_->WriteAt(offset, source);
  }
  std::uint64_t Size() override { return inner_->Size(); }
  void Truncate(std::uint64_t size) override {
    Ask(Operation::Truncate);
    inner_->Truncate(size);
  }
  void Sync() override {
    Ask(Operation::Sync);
    inner_->Sync();
  }
  FileTimes Times() override { return inner_->Times(); }
  void StampNow() noexcept override { inner_->StampNow(); }
  FileIdentity Identity() override { return inner_->Identity(); }
  bool IsStillAt(const std::string& path) override { return inner_->IsStillAt(path); }
  std::unique_ptr<File> OpenAgain() override {
    Ask(Operation::Open);
    return std::make_unique<InterceptedFile>(system_, inner_->OpenAgain(), path_);
  }
  bool IsReadOnly() const override { return inner_->IsReadOnly(); }
  bool TryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
    Ask(Operation::Lock);
    return inner_->TryLock(offset, length, kind);
  }
  void Unlock(std::uint64_t offset, std::uint64_t length) override { inner_->Unlock(offset, length); }
  bool IsLockedByOther(std::uint64_t offset, std::uint64_t length) override {
    return inner_->IsLockedByOther(offset, length);
  }
  std::string LockHolder(std::uint64_t offset, std::uint64_t length) override {
    return inner_->LockHolder(offset, length);
  }

 private:
  void Ask(Operation operation) {
    system_.Before(operation, path_, [] {});
  }

  InterceptedFileSystem& system_;
  std::unique_ptr<File> inner_;
  std::string path_;
};

void Nothing() {}

}  // namespace

std::unique_ptr<File> InterceptedFileSystem::Open(const std::string& path, OpenMode mode) {
  Before(mode == OpenMode::CreateNew ? Operation::Create : Operation::Open, path, Nothing);
  return std::make_unique<InterceptedFile>(*this, inner_->Open(path, mode), path);
}

bool InterceptedFileSystem::Exists(const std::string& path) {
  return inner_->Exists(path);
}
bool InterceptedFileSystem::IsWritable(const std::string& path) {
  return inner_->IsWritable(path);
}
std::string InterceptedFileSystem::CanonicalPath(const std::string& path) {
  return inner_->CanonicalPath(path);
}

void InterceptedFileSystem::Remove(const std::string& path) {
  Before(Operation::Remove, path, Nothing);
  inner_->Remove(path);
}

void InterceptedFileSystem::Rename(const std::string& from, const std::string& to) {
  Before(Operation::Rename, from, Nothing);
  inner_->Rename(from, to);
}

void InterceptedFileSystem::CopyPermissions(const std::string& from, const std::string& to) {
  inner_->CopyPermissions(from, to);
}

void InterceptedFileSystem::SyncFolderOf(const std::string& path) {
  Before(Operation::SyncFolder, path, Nothing);
  inner_->SyncFolderOf(path);
}

void InterceptedFileSystem::Pause(std::chrono::milliseconds duration) {
  inner_->Pause(duration);
}

std::unique_ptr<BackgroundWork> InterceptedFileSystem::NewBackgroundWork(std::chrono::milliseconds delay,
                                                                         std::function<void()> work) {
  return inner_->NewBackgroundWork(delay, std::move(work));
}

}  // namespace tavi::access::test
