#pragma once

#include <cstdint>
#include <string>

namespace tavi::access {

/// A stretch of an open file, as locks see it.
struct LockRange {
  int descriptor = -1;  ///< an open file
  std::uint64_t offset = 0;
  std::uint64_t length = 0;
};

/// Who holds a lock in a range by another opening of the file: "process 1234 (tavi)", or "another connection of this
/// process". Empty when the system does not tell (a process of another person, another machine).
[[nodiscard]] std::string FindLockOwner(const LockRange& range);

}  // namespace tavi::access
