#pragma once

#include <string>
#include <string_view>

namespace tavi::access {

/// What a connection string asks for.
struct ConnectionString {
  std::string dataSource;
  bool readOnly = false;
};

/// Reads "Name=Value;Name=Value": names ignore case, values may stand in single or double quotes. Understands Provider
/// (Microsoft.Jet.OLEDB... or Microsoft.ACE.OLEDB...), Data Source and Mode (Read opens for reading only); other items
/// are left unread. Raises ProviderFailure for another provider, a missing data source or a text that is no such list.
ConnectionString ParseConnectionString(std::string_view text);

}  // namespace tavi::access
