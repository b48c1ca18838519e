// The system's own names are defined here, so that the dynamic linker takes these for all callers of the program.
#include "host/support/SystemCalls.h"

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <mutex>

namespace tavi::host {
namespace {

struct Plan {
  bool isSet = false;
  std::size_t number = 0;
  CallTrouble trouble = CallTrouble::Kill;
};

Plan plan;
std::atomic<std::size_t> calls{0};

std::mutex flushedMutex;
std::set<std::string> flushed;

void NoteFlush(int file) {
  const std::lock_guard lock(flushedMutex);
  flushed.insert(std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file)).string());
}

enum class CallKind { Grows, Other };

/// False when the call must fail for want of room. `half` carries out the first half of a write.
template <typename Half>
bool Passes(CallKind kind, Half half) {
  const std::size_t call = calls++;
  if (!plan.isSet || call < plan.number) return true;
  if (plan.trouble == CallTrouble::DiskFull) {
    if (kind == CallKind::Other) return true;
    errno = ENOSPC;
    return false;
  }
  if (plan.trouble == CallTrouble::KillInTheMiddle) half();
  ::kill(::getpid(), SIGKILL);
  return true;
}

bool Passes(CallKind kind) {
  return Passes(kind, [] {});
}

/// Only files are counted: what a test program itself prints is none.
bool IsFile(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

template <typename... Arguments>
long System(long number, Arguments... arguments) {
  return ::syscall(number, arguments...);
}

ssize_t WriteAt(int file, const void* bytes, std::size_t count, off_t offset) {
  const auto half = [&] { System(SYS_pwrite64, file, bytes, count / 2, offset); };
  return Passes(CallKind::Grows, half) ? System(SYS_pwrite64, file, bytes, count, offset) : -1;
}

}  // namespace

void TroubleAtCall(std::size_t number, CallTrouble trouble) {
  plan = {true, number, trouble};
  calls = 0;
  const std::lock_guard lock(flushedMutex);
  flushed.clear();
}

void NoTrouble() {
  plan.isSet = false;
}

std::size_t ChangingCalls() {
  return calls;
}

const std::set<std::string>& FlushedPaths() {
  return flushed;
}

}  // namespace tavi::host

using tavi::host::CallKind;
using tavi::host::IsFile;
using tavi::host::Passes;
using tavi::host::System;

extern "C" {

ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
  return tavi::host::WriteAt(file, bytes, count, offset);
}

ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t offset) {
  return tavi::host::WriteAt(file, bytes, count, offset);
}

ssize_t write(int file, const void* bytes, size_t count) {
  if (!IsFile(file)) return System(SYS_write, file, bytes, count);
  const auto half = [&] { System(SYS_write, file, bytes, count / 2); };
  return Passes(CallKind::Grows, half) ? System(SYS_write, file, bytes, count) : -1;
}

ssize_t writev(int file, const struct iovec* parts, int count) {
  if (IsFile(file) && !Passes(CallKind::Grows)) return -1;
  return System(SYS_writev, file, parts, count);
}

ssize_t sendfile(int out, int in, off_t* offset, size_t count) noexcept {
  return Passes(CallKind::Grows) ? System(SYS_sendfile, out, in, offset, count) : -1;
}

ssize_t sendfile64(int out, int in, off64_t* offset, size_t count) noexcept {
  return Passes(CallKind::Grows) ? System(SYS_sendfile, out, in, offset, count) : -1;
}

ssize_t copy_file_range(int in, off64_t* inOffset, int out, off64_t* outOffset, size_t count, unsigned flags) {
  return Passes(CallKind::Grows) ? System(SYS_copy_file_range, in, inOffset, out, outOffset, count, flags) : -1;
}

int ftruncate(int file, off_t size) noexcept {
  return Passes(CallKind::Other) ? static_cast<int>(System(SYS_ftruncate, file, size)) : -1;
}

int ftruncate64(int file, off64_t size) noexcept {
  return Passes(CallKind::Other) ? static_cast<int>(System(SYS_ftruncate, file, size)) : -1;
}

int fsync(int file) {
  tavi::host::NoteFlush(file);
  return Passes(CallKind::Other) ? static_cast<int>(System(SYS_fsync, file)) : -1;
}

int fdatasync(int file) {
  return Passes(CallKind::Other) ? static_cast<int>(System(SYS_fdatasync, file)) : -1;
}

int rename(const char* from, const char* to) noexcept {
  return Passes(CallKind::Other) ? static_cast<int>(System(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0)) : -1;
}

int unlink(const char* path) noexcept {
  return Passes(CallKind::Other) ? static_cast<int>(System(SYS_unlinkat, AT_FDCWD, path, 0)) : -1;
}

int unlinkat(int folder, const char* path, int flags) noexcept {
  return Passes(CallKind::Other) ? static_cast<int>(System(SYS_unlinkat, folder, path, flags)) : -1;
}

int rmdir(const char* path) noexcept {
  return Passes(CallKind::Other) ? static_cast<int>(System(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR)) : -1;
}

// The C library's own remove would not ask the two above.
int remove(const char* path) noexcept {
  if (!Passes(CallKind::Other)) return -1;
  const int result = static_cast<int>(System(SYS_unlinkat, AT_FDCWD, path, 0));
  return result == -1 && errno == EISDIR ? static_cast<int>(System(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR))
                                         : result;
}

int mkdir(const char* path, mode_t mode) noexcept {
  return Passes(CallKind::Grows) ? static_cast<int>(System(SYS_mkdirat, AT_FDCWD, path, mode)) : -1;
}

}  // extern "C"
