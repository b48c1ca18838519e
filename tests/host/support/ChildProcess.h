#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace tavi::host {

/// What a child process may take before the system ends it.
struct ChildLimits {
  unsigned processorSeconds = 60;
  unsigned seconds = 120;          ///< on the clock on the wall
  std::uint64_t addressSpace = 0;  ///< bytes; 0: no limit. Not kept under the address sanitizer, which needs terabytes
};

/// How a child process ended.
struct ChildEnd {
  int signal = 0;  ///< what ended it; 0: it came to its end
  int code = 0;
  std::uint64_t peakBytes = 0;  ///< the most memory that it had at a time
  std::string said;             ///< what it told last
  std::string told;             ///< all that it told for the test
};

/// Speaks to the test from within a child process.
class ChildVoice {
 public:
  /// What the child is doing: the last one is known however it ends.
  virtual void Say(const std::string& what) = 0;
  /// Something for the test, in addition to what was told before.
  virtual void Tell(const std::string& what) = 0;

 protected:
  ~ChildVoice() = default;
};

/// Runs `work` in a process of its own, a copy of this one, and waits for its end. An exception is told, and the code
/// is 99 then. No file of an engine may be open and no other thread run when it is called.
[[nodiscard]] ChildEnd RunInChild(const std::function<void(ChildVoice&)>& work, const ChildLimits& limits = {});

}  // namespace tavi::host
