#include "access/provider/support/Worker.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <stdexcept>

namespace tavi::access::test {

namespace {

struct Pipe {
  int readEnd;
  int writeEnd;
};

Pipe MakePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  return {ends[0], ends[1]};
}

std::string ProgramPath() {
  return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "test_access_worker").string();
}

}  // namespace

/// Numbers of the process and of the pipes' ends here; negative when they are closed.
struct Worker::System {
  pid_t process = -1;
  int input = -1;
  int output = -1;
};

Worker::Worker(const std::vector<std::string>& arguments) : system_(std::make_unique<System>()) {
  const Pipe toWorker = MakePipe();
  const Pipe fromWorker = MakePipe();
  system_->input = toWorker.writeEnd;
  system_->output = fromWorker.readEnd;
  std::vector<std::string> texts = {ProgramPath()};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, toWorker.readEnd, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, fromWorker.writeEnd, STDOUT_FILENO);
  const int result = ::posix_spawn(&system_->process, texts[0].c_str(), &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(toWorker.readEnd);
  ::close(fromWorker.writeEnd);
  if (result != 0) throw std::runtime_error("could not start " + texts[0]);
}

Worker::~Worker() {
  EndInput();
  if (system_->process > 0) {
    Kill();
    Wait();
  }
  ::close(system_->output);
}

std::optional<std::string> Worker::ReadLine() {
  for (;;) {
    if (const std::size_t end = buffered_.find('\n'); end != std::string::npos) {
      std::string line = buffered_.substr(0, end);
      buffered_.erase(0, end + 1);
      return line;
    }
    std::array<char, 4096> bytes{};
    const ssize_t count = ::read(system_->output, bytes.data(), bytes.size());
    if (count <= 0) return std::nullopt;
    buffered_.append(bytes.data(), static_cast<std::size_t>(count));
  }
}

void Worker::EndInput() {
  if (system_->input >= 0) ::close(system_->input);
  system_->input = -1;
}

std::string Worker::Process() const {
  return std::to_string(system_->process);
}

void Worker::Kill() {
  ::kill(system_->process, SIGKILL);
}

int Worker::Wait() {
  int status = 0;
  ::waitpid(system_->process, &status, 0);
  system_->process = -1;
  if (WIFSIGNALED(status)) return WTERMSIG(status) == SIGKILL ? kKilled : -WTERMSIG(status);
  return WEXITSTATUS(status);
}

}  // namespace tavi::access::test
