#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iostream>

#include "access/provider/support/EveningWorker.h"
#include "access/provider/support/WorkerTasks.h"
#include "platform/values/Error.h"

namespace tavi::access::test {

namespace {

using Arguments = std::vector<std::string>;

/// The evening while files may not grow.
class CrampedWorker : public EveningWorker {
 public:
  using EveningWorker::EveningWorker;

  // A step that fails for want of room is told, and run again with more.
  void RunCramped() {
    for (; next_ < steps_.size(); Report()) {
      if (steps_[next_].kind == EveningStep::Kind::Reopen) {
        ReopenCramped();
        continue;
      }
      std::string refusal;
      SetLimit(4096);
      while (!RunStep(*connection_, steps_[next_], &refusal) && refusal.find("File too large") != std::string::npos) {
        std::cout << "error " << refusal << std::endl;
        SetLimit(room_ * 2);
      }
    }
    ReopenCramped();
    connection_->Close();
  }

 private:
  // The database cannot grow while it is closed; the log keeps what it should have taken.
  void ReopenCramped() {
    SetLimit(0);
    try {
      connection_->Close();
    } catch (const Error& error) {
      std::cout << "error " << error.Description() << std::endl;
    }
    Open();
    SetLimit(RLIM_INFINITY);
    connection_->Close();
    Open();
  }

  // Files may become this much longer than the longest one is.
  void SetLimit(rlim_t room) {
    room_ = room;
    struct rlimit limit {};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = limit.rlim_max;
    if (room != RLIM_INFINITY) {
      rlim_t longest = std::filesystem::file_size(path_);
      std::error_code none;
      const auto log = std::filesystem::file_size(path_ + ".redo", none);
      if (!none) longest = std::max<rlim_t>(longest, log);
      limit.rlim_cur = longest + room;
    }
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }

  rlim_t room_ = 0;
};

int Lock(const Arguments& arguments) {
  const int file = ::open(arguments.at(1).c_str(), O_RDWR);
  struct flock range {};
  range.l_type = F_WRLCK;
  range.l_whence = SEEK_SET;
  range.l_start = static_cast<off_t>(std::stoul(arguments.at(2)));
  range.l_len = static_cast<off_t>(std::stoul(arguments.at(3)));
  if (::fcntl(file, F_SETLK, &range) != 0) return 1;
  WaitForEndOfInput();
  return 0;
}

}  // namespace

int RunSystemTask(const Arguments& arguments) {
  if (arguments.at(0) == "lock") return Lock(arguments);
  if (arguments.at(0) != "cramped") return 2;
  CrampedWorker(arguments).RunCramped();
  return 0;
}

}  // namespace tavi::access::test
