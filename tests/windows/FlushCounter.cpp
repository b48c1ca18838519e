#include "windows/FlushCounter.h"

#include <windows.h>

#include <atomic>
#include <bit>

namespace tavi::test {
namespace {

std::atomic<int> flushes = 0;

BOOL WINAPI CountedFlush(HANDLE file) {
  ++flushes;
  return std::bit_cast<decltype(&::FlushFileBuffers)>(
      ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "FlushFileBuffers"))(file);
}

}  // namespace

int CountFlushes() {
  return flushes;
}

}  // namespace tavi::test

// Calls of the system go by such a pointer, which programs usually get from the import library.
extern "C" {
#ifdef _WIN64
decltype(&::FlushFileBuffers) __imp_FlushFileBuffers = tavi::test::CountedFlush;
#else
decltype(&::FlushFileBuffers) countedFlush __asm__("__imp__FlushFileBuffers@4") = tavi::test::CountedFlush;
#endif
}
