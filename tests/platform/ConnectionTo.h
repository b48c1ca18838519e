#pragma once

#include <string>

namespace tavi {

/// The connection string by which tests open a file, as scoring programs write it.
inline std::string ConnectionTo(const std::string& path) {
  return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path;
}

}  // namespace tavi
