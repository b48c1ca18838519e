#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "access/file/FileSystem.h"
#include "access/file/LogFlush.h"
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

/// What a connection string asks for.
struct ConnectionString {
  std::string dataSource;
  bool readOnly = false;
  FlushTime flush = FlushTime::Soon;
};

/// Reads "Name=Value;Name=Value": names ignore case, values may stand in single or double quotes, which are doubled in
/// them. Understands Provider (Microsoft.Jet.OLEDB... or Microsoft.ACE.OLEDB...), Data Source, Mode (Read opens for
/// reading only) and Flush (Each: a statement returns when it is on the disk); other items are left unread. Raises
/// ProviderFailure for another provider, a missing data source or a text that is no such list.
ConnectionString ParseConnectionString(std::string_view text);

}  // namespace tavi::access
