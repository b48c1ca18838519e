#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "access/file/FileSystem.h"

namespace tavi::access {

/// Another database program that has a file open, as the lock file tells that Access keeps beside an open database (the
/// same name with .ldb): an array of 64 bytes for each user, a computer's name and a user's name of up to 32 bytes
/// each. The file may be left behind by a crash; only locks on it show that somebody is there. A user's lock lies far
/// behind the end, one byte for each place in the array.
struct ForeignUse {
  std::string lockPath;
  /// "user Admin on computer SCORER" for each user who is there; all that the file names when the locks do not tell.
  std::vector<std::string> users;

  /// "Another database program has it open (user ...), as its lock file '...' shows".
  [[nodiscard]] std::string Describe() const;
};

/// Looks whether another database program has the database open. Raises ProviderFailure when the lock file is there but
/// cannot be looked into.
[[nodiscard]] std::optional<ForeignUse> FindForeignUse(FileSystem& fileSystem, const std::string& databasePath);

/// Keeps other database programs out while a file is open here, where the system lets it (Windows). Such a program
/// opens the lock file for reading and writing, because it enters its user there; while it is held here nobody can.
/// Openers of this engine write nothing into it, so that any number of them hold it together, and none takes another
/// for such a program. What cannot be held is not: then FindForeignUse tells before each change.
class LockFileHold {
 public:
  LockFileHold(FileSystem& fileSystem, const std::string& databasePath);
  /// Holds the lock file unless it is held already or somebody else has it open for writing.
  void Try();
  [[nodiscard]] bool IsHeld() const { return file_ != nullptr; }
  /// Who else has the database open: nobody while the lock file is held, because who has entered a user has it open for
  /// writing; else as FindForeignUse. So openers of this engine, each of which looks, do not meet in each other's
  /// looks.
  [[nodiscard]] std::optional<ForeignUse> FindUse() const;
  /// Lets go of it; nobody else of this engine may hold it when `isLast`, and a lock file that nobody entered goes.
  void Release(bool isLast) noexcept;

 private:
  FileSystem& fileSystem_;
  std::string databasePath_;
  std::string path_;
  std::unique_ptr<File> file_;
};

}  // namespace tavi::access
