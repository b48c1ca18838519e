#pragma once

#include <cstdint>

#include "access/file/Pager.h"

namespace tavi::access {

/// What rows and definitions need to know about the version of their file.
struct FormatVersion {
  bool isJet3 = false;
  std::uint16_t codePage = 0;  ///< of texts in a Jet 3 file; Jet 4 texts are Unicode
};

/// The version of an open file; needs an open statement.
[[nodiscard]] FormatVersion FormatVersionOf(Pager& pager);

}  // namespace tavi::access
