#pragma once

#include <memory>
#include <string>

#include "access/file/support/MemoryFileSystem.h"

namespace tavi::testing {

/// An empty folder in memory for one test whose subject is not the disk; used like a TemporaryFolder. Platforms whose
/// database files it is to hold are made with Files().
class MemoryFolder {
 public:
  /// Its path, which leads nowhere on the disk.
  [[nodiscard]] std::string Path() const;
  [[nodiscard]] std::string Path(const std::string& name) const;

  void WriteFile(const std::string& name, const std::string& content) const;
  /// Empty where there is no such file.
  [[nodiscard]] std::string ReadFile(const std::string& name) const;
  /// Copies a file, over another one where there is one.
  void CopyFile(const std::string& from, const std::string& to) const;
  [[nodiscard]] bool Has(const std::string& name) const;
  [[nodiscard]] std::size_t FileCount() const;
  /// Makes a membership file of the current layout without rows. The first one of a program is made table by table, the
  /// others are copies of it.
  void MakeClubFile(const std::string& name) const;

  [[nodiscard]] const std::shared_ptr<access::test::MemoryFileSystem>& Files() const { return files_; }

 private:
  std::shared_ptr<access::test::MemoryFileSystem> files_ = std::make_shared<access::test::MemoryFileSystem>();
};

}  // namespace tavi::testing
