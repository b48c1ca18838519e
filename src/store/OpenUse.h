#pragma once

#include "store/cDatabase.h"

namespace tavi {

/// One counted use of the store's open file for the length of a scope: opens on construction, counts down at its end,
/// on every path. An error of the scope stays the one that is reported: one of closing is then swallowed.
class OpenUse {
 public:
  /// Raises what OpenDB raises.
  explicit OpenUse(cDatabase& database) : database_(database) {
    const std::int16_t before = database_.OpenCount();
    database_.OpenDB();
    // At its end the count stands still: what was not counted is not counted down either.
    counted_ = database_.OpenCount() > before;
  }
  ~OpenUse() {
    try {
      if (counted_) database_.CloseDB(false);
    } catch (const std::exception&) {
      counted_ = false;
    }
  }
  OpenUse(const OpenUse&) = delete;
  OpenUse& operator=(const OpenUse&) = delete;

  /// Counts down now; errors of closing the file reach the caller.
  void Close() {
    if (!counted_) return;
    counted_ = false;
    database_.CloseDB(false);
  }
  /// Leaves the file open: somebody else counts down.
  void KeepOpen() { counted_ = false; }

 private:
  cDatabase& database_;
  bool counted_ = false;
};

}  // namespace tavi
