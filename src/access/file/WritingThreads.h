#pragma once

#include <map>
#include <mutex>
#include <string>
#include <thread>

namespace tavi::access {

/// Which threads of this process may write which files just now, and which wait for it. Its purpose is to see that a
/// wait can never end: because the thread waits for a connection of its own, or for one whose thread waits, perhaps by
/// way of others, for this one. What other processes do is not known here. For several threads.
class WritingThreads {
 public:
  /// Tells that the calling thread has got a file, or has given it back.
  void Hold(const std::string& path);
  void Release(const std::string& path) noexcept;

  /// The calling thread waits for a file while this lives.
  class Wait {
   public:
    Wait(WritingThreads& threads, std::string path);
    ~Wait();
    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;

    [[nodiscard]] bool IsHopeless() const;

   private:
    WritingThreads& threads_;
    std::string path_;
  };

 private:
  std::mutex mutex_;
  std::map<std::string, std::thread::id> holders_;
  std::map<std::thread::id, std::string> waiting_;
};

}  // namespace tavi::access
