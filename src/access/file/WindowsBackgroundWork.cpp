// The thread is never joined: whoever ends the work may hold the system's lock on loading libraries (a thread's end, a
// library's end), which a thread needs to begin and to end. It holds on to the module that it runs in instead, and what
// it shares with its owner belongs to both.
#include <windows.h>

#include <array>
#include <mutex>
#include <utility>

#include "access/file/EngineError.h"
#include "access/file/FileSystem.h"
#include "platform/values/WideText.h"

namespace tavi::access {

namespace {

class Handle {
 public:
  explicit Handle(HANDLE value) : value_(value) {}
  ~Handle() {
    if (value_ != nullptr) ::CloseHandle(value_);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  [[nodiscard]] HANDLE Value() const { return value_; }

 private:
  HANDLE value_;
};

/// What the thread and its owner share. `asked` lets one wait end and is reset by it; `ending` and `idle` stay as they
/// are set.
struct Shared {
  std::chrono::milliseconds delay;
  std::function<void()> work;
  Handle asked{::CreateEventW(nullptr, FALSE, FALSE, nullptr)};
  Handle ending{::CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  Handle idle{::CreateEventW(nullptr, TRUE, TRUE, nullptr)};
  std::mutex mutex;
  bool isAsked = false;
  bool isEnding = false;
};

/// Taking the request and becoming busy is one step under the mutex: who settles in between sees either no request or
/// somebody busy.
void WorkWhenAsked(Shared& shared) {
  {
    const std::lock_guard lock(shared.mutex);
    if (shared.isEnding || !std::exchange(shared.isAsked, false)) return;
    ::ResetEvent(shared.idle.Value());
  }
  shared.work();
  ::SetEvent(shared.idle.Value());
}

/// The delay is a wait for the end, so that ending never takes as long as the delay.
void Run(Shared& shared) {
  const std::array<HANDLE, 2> news = {shared.ending.Value(), shared.asked.Value()};
  while (::WaitForMultipleObjects(2, news.data(), FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
    if (::WaitForSingleObject(shared.ending.Value(), static_cast<DWORD>(shared.delay.count())) == WAIT_OBJECT_0) return;
    WorkWhenAsked(shared);
  }
}

DWORD WINAPI ThreadMain(void* argument);

/// The library or program that holds this code, by the address of a function in it; a reference is taken unless the
/// flags say otherwise.
HMODULE OwnModule(DWORD flags) {
  HMODULE module = nullptr;
  ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags, reinterpret_cast<LPCWSTR>(&ThreadMain), &module);
  return module;
}

// Gives back the reference to the module that was taken for it when it was begun.
DWORD WINAPI ThreadMain(void* argument) {
  {
    const std::unique_ptr<std::shared_ptr<Shared>> shared(static_cast<std::shared_ptr<Shared>*>(argument));
    Run(**shared);
  }
  ::FreeLibraryAndExitThread(OwnModule(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT), 0);
}

class WindowsBackgroundWork final : public BackgroundWork {
 public:
  WindowsBackgroundWork(std::chrono::milliseconds delay, std::function<void()> work)
      : shared_(std::make_shared<Shared>()) {
    shared_->delay = delay;
    shared_->work = std::move(work);
  }

  // Waits for work that is being done, not for the thread, which goes by itself.
  ~WindowsBackgroundWork() override {
    {
      const std::lock_guard lock(shared_->mutex);
      shared_->isEnding = true;
    }
    ::SetEvent(shared_->ending.Value());
    WaitUntilIdle();
  }
  WindowsBackgroundWork(const WindowsBackgroundWork&) = delete;
  WindowsBackgroundWork& operator=(const WindowsBackgroundWork&) = delete;

  void Ask() override {
    if (thread_ == nullptr) Begin();
    const std::lock_guard lock(shared_->mutex);
    if (!std::exchange(shared_->isAsked, true)) ::SetEvent(shared_->asked.Value());
  }

  void Settle() override {
    {
      const std::lock_guard lock(shared_->mutex);
      shared_->isAsked = false;
    }
    WaitUntilIdle();
  }

 private:
  void Begin() {
    // The reference for the thread: the module must not be unloaded under it.
    const HMODULE module = OwnModule(0);
    auto argument = std::make_unique<std::shared_ptr<Shared>>(shared_);
    thread_ = std::make_unique<Handle>(::CreateThread(nullptr, 0, &ThreadMain, argument.get(), 0, nullptr));
    if (thread_->Value() != nullptr) {
      static_cast<void>(argument.release());
      return;
    }
    // Before anything that may set another one.
    const DWORD code = ::GetLastError();
    thread_.reset();
    if (module != nullptr) ::FreeLibrary(module);
    RaiseFailure("Could not begin a thread that flushes what is stored: " + windows::SystemErrorText(code) + ".");
  }

  // The end of a process stops threads anywhere; nothing is waited for then.
  void WaitUntilIdle() {
    if (thread_ == nullptr) return;
    const std::array<HANDLE, 2> ends = {shared_->idle.Value(), thread_->Value()};
    ::WaitForMultipleObjects(2, ends.data(), FALSE, INFINITE);
  }

  std::shared_ptr<Shared> shared_;
  std::unique_ptr<Handle> thread_;
};

}  // namespace

std::unique_ptr<BackgroundWork> NativeBackgroundWork(std::chrono::milliseconds delay, std::function<void()> work) {
  return std::make_unique<WindowsBackgroundWork>(delay, std::move(work));
}

}  // namespace tavi::access
