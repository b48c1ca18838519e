// The platform of this machine: the parts that are the same everywhere (clock, engine) are made here, those that each
// system has in its own way by SetSystemParts, of which the build links one. What the engine must not know of the
// component is handed to it as functions: how its paths are written, whom to ask whether a statement is to be given up,
// where to log.
#include "composition/Composition.h"

#include "access/catalog/Database.h"
#include "access/file/FileSystem.h"
#include "access/provider/AccessProvider.h"
#include "composition/SystemParts.h"
#include "platform/portable/PortableServices.h"
#include "util/Diagnostics.h"
#include "util/Paths.h"

namespace tavi {
namespace {

std::string ToNativePath(const std::string& path) {
  return NativePath(path);
}

/// A clock that stands still gives commands and tests the same answers on every day.
std::shared_ptr<const Clock> MakeClock(const PlatformOptions& options) {
  if (options.now) return std::make_shared<FixedClock>(*options.now);
  return std::make_shared<SystemClock>();
}

std::shared_ptr<const ado::Provider> MakeProvider(const PlatformOptions& options,
                                                  const std::shared_ptr<const Clock>& clock) {
  access::ProviderOptions providerOptions;
  providerOptions.nativePath = ToNativePath;
  providerOptions.isCancelled = options.isCancelled;
  providerOptions.pager.report = [](const std::string& text) { WriteDiagnostic(text); };
  return access::MakeAccessProvider(options.databaseFiles ? options.databaseFiles : access::NativeFileSystem(), clock,
                                    std::move(providerOptions));
}

}  // namespace

std::shared_ptr<const Platform> MakePlatform(const PlatformOptions& options) {
  auto platform = std::make_shared<Platform>();
  platform->clock = MakeClock(options);
  platform->databaseProvider = MakeProvider(options, platform->clock);
  // Before what the caller wants instead of the system's.
  SetSystemParts(*platform);
  if (options.messageBoxes) platform->messageBoxes = options.messageBoxes;
  return platform;
}

std::shared_ptr<const Platform> DefaultPlatform() {
  return MakePlatform(PlatformOptions{});
}

void CreateEmptyDatabase(const std::string& path, Date now) {
  access::Database::CreateFile(*access::NativeFileSystem(), path, now);
}

}  // namespace tavi
