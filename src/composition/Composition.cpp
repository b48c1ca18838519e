#include "composition/Composition.h"

#include <iostream>

#include "access/catalog/Database.h"
#include "access/file/FileSystem.h"
#include "access/provider/AccessProvider.h"
#include "composition/NameKeyAdapter.h"
#include "platform/portable/Clocks.h"
#include "platform/portable/ConsoleMessageBoxes.h"
#include "platform/portable/EmptyRegistry.h"
#include "platform/portable/XdgShellFolders.h"
#include "platform/portable/XmlSettingsDocuments.h"
#include "util/Diagnostics.h"
#include "util/NativePath.h"

namespace tavi {
namespace {

std::string ToNativePath(const std::string& path) {
  return NativePath(path);
}

std::shared_ptr<const Clock> MakeClock(const PlatformOptions& options) {
  if (options.now) return std::make_shared<FixedClock>(*options.now);
  return std::make_shared<SystemClock>();
}

std::shared_ptr<const ado::Provider> MakeProvider(const std::shared_ptr<const Clock>& clock) {
  access::ProviderOptions options;
  options.nativePath = ToNativePath;
  options.pager.report = [](const std::string& text) { WriteDiagnostic(text); };
  return access::MakeAccessProvider(access::NativeFileSystem(), clock, std::move(options));
}

}  // namespace

std::shared_ptr<const Platform> MakePlatform(const PlatformOptions& options) {
  auto platform = std::make_shared<Platform>();
  platform->clock = MakeClock(options);
  platform->databaseProvider = MakeProvider(platform->clock);
  platform->messageBoxes =
      options.messageBoxes ? options.messageBoxes : std::make_shared<ConsoleMessageBoxes>(std::cerr);
  platform->nameKeyService = std::make_shared<NameKeyAdapter>();
  platform->registry = std::make_shared<EmptyRegistry>();
  platform->settingsDocuments = std::make_shared<XmlSettingsDocuments>(ToNativePath);
  platform->shellFolders = std::make_shared<XdgShellFolders>();
  return platform;
}

std::shared_ptr<const Platform> DefaultPlatform() {
  return MakePlatform(PlatformOptions{});
}

void CreateEmptyDatabase(const std::string& path, Date now) {
  access::Database::CreateFile(*access::NativeFileSystem(), path, now);
}

}  // namespace tavi
