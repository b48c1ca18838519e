#pragma once

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

}  // namespace tavi::access
