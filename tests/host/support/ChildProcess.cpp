#include "host/support/ChildProcess.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <stdexcept>

namespace tavi::host {
namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr bool kAddressesAreSanitized = true;
#else
constexpr bool kAddressesAreSanitized = false;
#endif

constexpr int kFailed = 99;

/// Memory that parent and child share, so that it outlives a kill.
class SharedTexts final : public ChildVoice {
 public:
  SharedTexts()
      : texts_(static_cast<Texts*>(
            ::mmap(nullptr, sizeof(Texts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
    if (texts_ == MAP_FAILED) throw std::runtime_error("no memory to share with a child process");
  }
  ~SharedTexts() { ::munmap(texts_, sizeof(Texts)); }
  SharedTexts(const SharedTexts&) = delete;
  SharedTexts& operator=(const SharedTexts&) = delete;

  void Say(const std::string& what) override { Put(texts_->said, sizeof texts_->said, what); }
  void Tell(const std::string& what) override { Put(texts_->told, sizeof texts_->told, texts_->told + what); }
  [[nodiscard]] std::string Said() const { return texts_->said; }
  [[nodiscard]] std::string Told() const { return texts_->told; }

 private:
  struct Texts {
    char said[1024];
    char told[16384];
  };

  static void Put(char* target, std::size_t size, const std::string& text) {
    const std::size_t count = std::min(text.size(), size - 1);
    std::memcpy(target, text.data(), count);
    target[count] = '\0';
  }

  Texts* texts_;
};

void SetLimit(int resource, rlim_t value) {
  struct rlimit limit {};
  ::getrlimit(static_cast<__rlimit_resource>(resource), &limit);
  limit.rlim_cur = std::min(value, limit.rlim_max);
  ::setrlimit(static_cast<__rlimit_resource>(resource), &limit);
}

void Limit(const ChildLimits& limits) {
  SetLimit(RLIMIT_CORE, 0);
  SetLimit(RLIMIT_CPU, limits.processorSeconds);
  if (limits.addressSpace > 0 && !kAddressesAreSanitized) SetLimit(RLIMIT_AS, limits.addressSpace);
  ::alarm(limits.seconds);
}

int RunWork(const std::function<void(ChildVoice&)>& work, SharedTexts& texts) {
  try {
    work(texts);
    return 0;
  } catch (const std::exception& error) {
    texts.Tell(std::string("failed: ") + error.what());
    return kFailed;
  }
}

}  // namespace

ChildEnd RunInChild(const std::function<void(ChildVoice&)>& work, const ChildLimits& limits) {
  SharedTexts texts;
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no child process could be started");
  if (child == 0) {
    Limit(limits);
    ::_exit(RunWork(work, texts));
  }
  int status = 0;
  struct rusage usage {};
  while (::wait4(child, &status, 0, &usage) < 0 && errno == EINTR) {
  }
  ChildEnd end;
  if (WIFSIGNALED(status)) end.signal = WTERMSIG(status);
  if (WIFEXITED(status)) end.code = WEXITSTATUS(status);
  end.peakBytes = static_cast<std::uint64_t>(usage.ru_maxrss) * 1024;
  end.said = texts.Said();
  end.told = texts.Told();
  return end;
}

}  // namespace tavi::host
