#pragma once

#include <string>
#include <string_view>

#include "access/file/LogFlush.h"

namespace tavi::access {

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
