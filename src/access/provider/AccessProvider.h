#pragma once

#include <memory>

#include "access/file/FileSystem.h"
#include "access/file/Pager.h"
#include "platform/Platform.h"
#include "platform/ado/Provider.h"

namespace tavi::access {

struct ProviderOptions {
  PagerOptions pager;
  /// Turns the path of a connection string into a native one (the component's texts keep backslashes).
  std::function<std::string(const std::string&)> nativePath;
  /// Asked between rows whether the running statement is to be given up; it fails then, and nothing of it is stored.
  std::function<bool()> isCancelled{};
};

/// The engine as a database provider. Answers "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=PATH". Errors have the
/// source "Microsoft JET Database Engine".
std::shared_ptr<const ado::Provider> MakeAccessProvider(std::shared_ptr<FileSystem> fileSystem,
                                                        std::shared_ptr<const Clock> clock, ProviderOptions options);

}  // namespace tavi::access
