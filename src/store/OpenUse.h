#pragma once

#include <type_traits>

#include "store/cDatabase.h"

namespace tavi {

/// One counted use of the store's open file for the length of a scope: opens on construction, counts down at its end,
/// on every path. What goes wrong when the file is closed there reaches nobody: an operation that ends without an error
/// calls Close, or runs in WhileOpen, which does.
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

/// What `work` gives, done with the file open. Errors of `work` pass on after the file has been counted down; so do
/// those of closing it, which can mean that its pages could not be written.
template <typename Work>
std::invoke_result_t<const Work&> WhileOpen(cDatabase& database, const Work& work) {
  OpenUse use(database);
  if constexpr (std::is_void_v<std::invoke_result_t<const Work&>>) {
    work();
    use.Close();
  } else {
    auto result = work();
    use.Close();
    return result;
  }
}

}  // namespace tavi
