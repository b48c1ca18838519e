#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "facade/MembershipDatabase.h"
#include "platform/Platform.h"

/// Where the parts are put together: the component's platform on this machine, with the embedded engine as the database
/// provider.
namespace tavi {

namespace access {
class FileSystem;
}

struct PlatformOptions {
  /// Stands still as the current date and time; none: the machine's clock.
  std::optional<Date> now = std::nullopt;
  /// Shows messages; none: they are written to standard error, under Windows shown as message boxes.
  std::shared_ptr<const MessageBoxes> messageBoxes = nullptr;
  /// Holds the database files; none: the machine's disks.
  std::shared_ptr<access::FileSystem> databaseFiles = nullptr;
  /// Asked on the thread of a running statement whether it is to be given up; none: it never is.
  std::function<bool()> isCancelled = nullptr;
};

/// A platform of this machine. Usable on all threads. DefaultPlatform is the one without any option.
std::shared_ptr<const Platform> MakePlatform(const PlatformOptions& options);

/// Writes a new Access file without tables. `path` is one of this system. Raises ProviderFailure when the file exists
/// or cannot be written.
void CreateEmptyDatabase(const std::string& path, Date now);

}  // namespace tavi
