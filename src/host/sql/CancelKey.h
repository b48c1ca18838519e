#pragma once

#include <csignal>

namespace tavi::host {

/// For its life Ctrl-C does not end the process but asks that the running statement be given up. One at a time in a
/// process, as signals are the process's.
class CancelKey {
 public:
  CancelKey();
  ~CancelKey();
  CancelKey(const CancelKey&) = delete;
  CancelKey& operator=(const CancelKey&) = delete;

  /// Whether Ctrl-C was pressed in the life of the object that there is. Callable on any thread.
  [[nodiscard]] static bool IsPressed();

 private:
  using Handler = void (*)(int);
  Handler former_;
};

}  // namespace tavi::host
