#pragma once

#include <iosfwd>
#include <mutex>

#include "platform/Platform.h"

namespace tavi {

/// Writes messages to a stream, for machines and programs without windows: the title with its kind, then the text.
/// Control characters other than line ends are left out, because the texts quote what files hold. Safe on any thread.
class ConsoleMessageBoxes : public MessageBoxes {
 public:
  /// The stream outlives this object.
  explicit ConsoleMessageBoxes(std::ostream& stream) : stream_(stream) {}
  void Show(MessageBoxIcon icon, const std::string& title, const std::string& text) const override;

 private:
  std::ostream& stream_;
  mutable std::mutex mutex_;
};

}  // namespace tavi
