#pragma once

#include <objbase.h>

#include <functional>
#include <thread>

namespace tavi::automation_test {

/// A thread with an apartment of its own, which does what it is given, one piece of work after the other. Between them
/// a single-threaded one answers calls of other apartments. The thread ends with this object.
class ApartmentThread {
 public:
  /// `model` is COINIT_APARTMENTTHREADED or COINIT_MULTITHREADED.
  explicit ApartmentThread(COINIT model);
  ~ApartmentThread();
  ApartmentThread(const ApartmentThread&) = delete;
  ApartmentThread& operator=(const ApartmentThread&) = delete;

  /// Begins a piece of work. The one before must have been waited for.
  void Begin(std::function<void()> work);
  /// Waits for its end, answering calls meanwhile.
  void Wait();
  /// Both.
  void Run(std::function<void()> work);

 private:
  void Live(COINIT model);

  HANDLE begin_;
  HANDLE end_;
  std::function<void()> work_;
  bool isLast_ = false;
  std::thread thread_;
};

/// Waits for a handle and dispatches the calling thread's messages meanwhile.
void WaitAnsweringCalls(HANDLE handle);

}  // namespace tavi::automation_test
