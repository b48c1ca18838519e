#include "harness/Process.h"

#include <sys/resource.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace tavi::bench {
namespace {

double Seconds(const struct timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

double ChildrenSeconds() {
  struct rusage usage {};
  ::getrusage(RUSAGE_CHILDREN, &usage);
  return Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
}

}  // namespace

double RunProcess(const std::string& command) {
  const double before = ChildrenSeconds();
  if (std::system(command.c_str()) != 0) throw std::runtime_error("This failed: " + command);  // NOLINT: our own texts
  return ChildrenSeconds() - before;
}

std::string Quoted(const std::string& path) {
  return "'" + path + "'";
}

std::string BuiltProgram(const std::string& name) {
  return Quoted((std::filesystem::read_symlink("/proc/self/exe").parent_path() / name).string());
}

}  // namespace tavi::bench
