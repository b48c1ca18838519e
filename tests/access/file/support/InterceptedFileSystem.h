#pragma once

#include <functional>
#include <memory>
#include <string>

#include "access/file/FileSystem.h"

namespace tavi::access::test {

/// A file system that passes every call on to another one, but asks a derived class first.
class InterceptedFileSystem : public FileSystem {
 public:
  enum class Operation { Open, Create, Read, Write, Truncate, Sync, Lock, Remove, Rename, SyncFolder };

  explicit InterceptedFileSystem(std::shared_ptr<FileSystem> inner) : inner_(std::move(inner)) {}

  std::unique_ptr<File> Open(const std::string& path, OpenMode mode) override;
  bool Exists(const std::string& path) override;
  bool IsWritable(const std::string& path) override;
  std::string CanonicalPath(const std::string& path) override;
  void Remove(const std::string& path) override;
  void Rename(const std::string& from, const std::string& to) override;
  void CopyPermissions(const std::string& from, const std::string& to) override;
  void SyncFolderOf(const std::string& path) override;
  void Pause(std::chrono::milliseconds duration) override;
  [[nodiscard]] std::chrono::steady_clock::time_point Now() override { return inner_->Now(); }
  std::unique_ptr<BackgroundWork> NewBackgroundWork(std::chrono::milliseconds delay,
                                                    std::function<void()> work) override;

  /// Called before each operation; throws to stop it. `partDone` is called to carry out a part of a write first (it
  /// does nothing for other operations).
  virtual void Before(Operation operation, const std::string& path, const std::function<void()>& partDone) = 0;

 private:
  std::shared_ptr<FileSystem> inner_;
};

}  // namespace tavi::access::test
