#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/values/Error.h"

namespace tavi {

/// What became of one table of an old file.
struct RecoveredTable {
  std::string name;
  bool isInOldFile = true;      ///< false: the old file has no such table
  std::int64_t found = 0;       ///< rows, as the old table states it, or as many as were come across, if those are more
  std::int64_t saved = 0;       ///< rows that are in the new table now
  std::int64_t lost = 0;        ///< the difference
  std::int64_t valuesLost = 0;  ///< values of saved rows that could not be read, or not be stored whole
  std::optional<Error> error;   ///< why the table could not be copied to its end, or not in full
  std::vector<std::string> remarks;  ///< damage and the like in words, the first few
  std::int64_t moreRemarks = 0;      ///< how many were left out

  /// True when the old file held something of this table that is not in the new one.
  [[nodiscard]] bool IsSomethingLost() const {
    return isInOldFile && (lost > 0 || valuesLost > 0 || error.has_value());
  }
};

/// What a recovery did.
struct RecoveryReport {
  std::vector<RecoveredTable> tables;  ///< in the order of copying
  std::vector<std::string> problems;   ///< of the steps after copying
  std::optional<Error> failure;        ///< why nothing was copied

  [[nodiscard]] bool IsSomethingLost() const {
    return failure || !problems.empty() ||
           std::any_of(tables.begin(), tables.end(), [](const auto& table) { return table.IsSomethingLost(); });
  }
};

/// Is told how far a recovery has come.
class RecoveryObserver {
 public:
  virtual ~RecoveryObserver() = default;
  /// So many rows of a table are done, of those that the old table states (0: unknown). Called once before the first.
  virtual void Show(const std::string& table, std::int64_t done, std::int64_t stated) = 0;
};

}  // namespace tavi
