#pragma once

#include "store/cDatabase.h"

namespace tavi {

/// One counted use of the store's open file for the length of a scope: opens on construction, counts down at its end,
/// on every path. An error of the scope stays the one that is reported: one of closing is then swallowed.
class OpenUse {
 public:
  /// Raises what OpenDB raises.
  explicit OpenUse(cDatabase& database) : database_(database) { database_.OpenDB(); }
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
    counted_ = false;
    database_.CloseDB(false);
  }
  /// Leaves the file open: somebody else counts down.
  void KeepOpen() { counted_ = false; }

 private:
  cDatabase& database_;
  bool counted_ = true;
};

}  // namespace tavi
