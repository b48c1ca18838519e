// The program that the tests start as another process. Tasks:
//
//   evening PATH SEED STEPS FIRST    runs the steps FIRST, FIRST + 1, ... of an evening; prints the number of finished
//                                    steps after each
//   cramped PATH SEED STEPS FIRST    the same while files may not grow: prints "error TEXT" for a step that met the
//                                    limit, gets a little more room, and runs it again
//   count PATH ROUNDS NUMBER         adds to counters and inserts rows, see SharingTest.cpp; prints "done"
//   lock PATH OFFSET LENGTH          locks bytes of a file, as other programs do, until its input ends; prints "ready"
//   hold PATH                        opens the file and stays in a write statement until its input ends; prints "ready"
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <iostream>
#include <string>

#include "access/file/Pager.h"
#include "access/provider/AccessProvider.h"
#include "access/provider/support/Counters.h"
#include "access/provider/support/Evening.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

using Arguments = std::vector<std::string>;

// Small, so that checkpoints come often.
constexpr std::uint64_t kCheckpointBytes = std::uint64_t{600} << 10U;

class EveningWorker {
 public:
  explicit EveningWorker(const Arguments& arguments)
      : path_(arguments.at(1)),
        steps_(MakeEvening(static_cast<std::uint32_t>(std::stoul(arguments.at(2))), std::stoul(arguments.at(3)))),
        next_(std::stoul(arguments.at(4))) {
    Open();
  }

  void Run() {
    for (; next_ < steps_.size(); Report()) {
      if (steps_[next_].kind == EveningStep::Kind::Reopen) {
        connection_->Close();
        Open();
      } else {
        RunStep(*connection_, steps_[next_]);
      }
    }
    connection_->Close();
  }

  // A step that fails for want of room is told, and run again with more.
  void RunCramped() {
    std::signal(SIGXFSZ, SIG_IGN);
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
  void Open() {
    ProviderOptions options;
    options.pager.checkpointBytes = kCheckpointBytes;
    connection_ = MakeAccessProvider(NativeFileSystem(), std::make_shared<EveningClock>(), options)
                      ->Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path_);
  }
  void Report() { std::cout << ++next_ << std::endl; }

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

  std::string path_;
  std::vector<EveningStep> steps_;
  std::size_t next_;
  rlim_t room_ = 0;
  std::unique_ptr<ado::Connection> connection_;
};

void WaitForEndOfInput() {
  std::cout << "ready" << std::endl;
  std::string line;
  while (std::getline(std::cin, line)) {
  }
}

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

int Hold(const Arguments& arguments) {
  const auto pager = Pager::Open(NativeFileSystem(), arguments.at(1), {});
  const WriteStatement statement(*pager);
  WaitForEndOfInput();
  return 0;
}

int Run(const Arguments& arguments) {
  const std::string& task = arguments.at(0);
  if (task == "evening") EveningWorker(arguments).Run();
  if (task == "cramped") EveningWorker(arguments).RunCramped();
  if (task == "count") {
    Count(arguments.at(1), std::stoul(arguments.at(2)), std::stoi(arguments.at(3)));
    std::cout << "done" << std::endl;
  }
  if (task == "lock") return Lock(arguments);
  return task == "hold" ? Hold(arguments) : 0;
}

}  // namespace
}  // namespace tavi::access::test

int main(int count, char** values) {
  try {
    return tavi::access::test::Run({values + 1, values + count});
  } catch (const std::exception& exception) {
    std::cout << "failed " << exception.what() << std::endl;
    return 1;
  }
}
