#pragma once

#include <cstdint>
#include <string>

#include "access/file/Pager.h"

namespace tavi::access {

/// Gives a finished file the name of another one in one step: `newPath`, on the same disk, takes the place of `path`,
/// which `holder` has open alone and closes then. Durable on return. Raises ProviderFailure when another database
/// program has the file open, or the file cannot be renamed; then nothing has changed.
void ReplaceFile(FileSystem& fileSystem, const std::string& newPath, const std::string& path, Pager& holder);

/// The same where no file lies under `path` yet. A redo log that lies there all the same belongs to a file that is no
/// more: it is set aside, and its new path returned; else the text is empty.
std::string PlaceFile(FileSystem& fileSystem, const std::string& newPath, const std::string& path);

/// Writes the contents of a file into a new one, durable but for its name, and returns their size in bytes. The same
/// people may use it as the file `permissionsOf`, when one is named, before anything is in it. Raises ProviderFailure
/// with the place and the system's reason for what cannot be read or written.
std::uint64_t CopyFile(FileSystem& fileSystem, File& from, const std::string& to,
                       const std::string& permissionsOf = {});

}  // namespace tavi::access
