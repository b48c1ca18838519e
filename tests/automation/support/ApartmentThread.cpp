#include "support/ApartmentThread.h"

namespace tavi::automation_test {

void WaitAnsweringCalls(HANDLE handle) {
  while (::MsgWaitForMultipleObjects(1, &handle, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
    MSG message{};
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) ::DispatchMessageW(&message);
  }
}

ApartmentThread::ApartmentThread(COINIT model)
    : begin_(::CreateEventW(nullptr, FALSE, FALSE, nullptr)), end_(::CreateEventW(nullptr, FALSE, FALSE, nullptr)) {
  thread_ = std::thread([this, model] { Live(model); });
}

ApartmentThread::~ApartmentThread() {
  isLast_ = true;
  Run([] {});
  thread_.join();
  ::CloseHandle(begin_);
  ::CloseHandle(end_);
}

void ApartmentThread::Begin(std::function<void()> work) {
  work_ = std::move(work);
  ::SetEvent(begin_);
}

void ApartmentThread::Wait() {
  WaitAnsweringCalls(end_);
}

void ApartmentThread::Run(std::function<void()> work) {
  Begin(std::move(work));
  Wait();
}

void ApartmentThread::Live(COINIT model) {
  ::CoInitializeEx(nullptr, static_cast<DWORD>(model));
  for (bool isLast = false; !isLast;) {
    WaitAnsweringCalls(begin_);
    isLast = isLast_;
    work_();
    work_ = nullptr;
    if (isLast) ::CoUninitialize();
    ::SetEvent(end_);
  }
}

}  // namespace tavi::automation_test
