#include "host/support/Command.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

#include "host/CommandLine.h"
#include "host/text/PathText.h"
#include "platform/values/Text.h"

namespace tavi::host {

namespace {

/// Windows removes no file that may only be read.
void RemoveAll(const std::filesystem::path& folder) {
  using Walk = std::filesystem::recursive_directory_iterator;
  std::error_code ignored;
  std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
  for (Walk walk(folder, ignored); walk != Walk(); walk.increment(ignored)) {
    std::filesystem::permissions(walk->path(), std::filesystem::perms::owner_all, ignored);
  }
  std::filesystem::remove_all(folder, ignored);
}

}  // namespace

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

std::filesystem::path FolderOfTests() {
#ifndef _WIN32
  const std::filesystem::path memory = "/dev/shm";
  constexpr std::uintmax_t kEnough = std::uintmax_t{512} << 20U;
  std::error_code error;
  const bool isChosen = std::getenv("TMPDIR") != nullptr;
  const bool hasSpace = std::filesystem::space(memory, error).available >= kEnough && !error;
  if (!isChosen && hasSpace && ::access(memory.c_str(), W_OK) == 0) return memory;
#endif
  return std::filesystem::temp_directory_path();
}

CommandFolder::CommandFolder() {
  const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
  std::string name = std::string(test->test_suite_name()) + "-" + test->name();
  for (char& c : name) c = c == '/' ? '-' : c;
  folder_ = FolderOfTests() / ("tavi-" + std::to_string(getpid()) + "-" + name);
  RemoveAll(folder_);
  std::filesystem::create_directories(folder_);
}

CommandFolder::~CommandFolder() {
  RemoveAll(folder_);
}

std::string CommandFolder::Path(const std::string& name) const {
  return name.empty() ? TextOf(folder_) : TextOf(folder_ / PathOf(name));
}

std::string CommandFolder::Write(const std::string& name, const std::string& content) const {
  std::ofstream(PathOf(Path(name)), std::ios::binary) << content;
  return Path(name);
}

Outcome CommandFolder::Run(std::vector<std::string> arguments, const std::string& input) const {
  return RunIn(Club(), std::move(arguments), input);
}

Outcome CommandFolder::RunIn(const std::string& club, std::vector<std::string> arguments,
                             const std::string& input) const {
  arguments.insert(arguments.begin(), {"--db", club, "--today", "2026-01-15"});
  std::istringstream in(input);
  std::ostringstream out;
  std::ostringstream error;
  Outcome outcome;
  outcome.code = RunCommandLine(std::move(arguments), Terminal{in, out, error});
  outcome.out = out.str();
  outcome.error = error.str();
  return outcome;
}

std::vector<std::string> CommandFolder::Query(const std::string& statement) const {
  const Outcome outcome = Run({"sql", statement});
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  std::vector<std::string> rows;
  std::istringstream lines(outcome.out);
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) rows.push_back(line);
  return rows;
}

std::string InCell(const std::string& value) {
  return ReplaceAll(value, "\\", "\\\\");
}

ProgramOutput RunProgram(const std::string& commandLine) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(commandLine.c_str(), "r"),
                                                   [](FILE* file) { return pclose(file); });
  ProgramOutput output;
  if (!pipe) return output;
  std::array<char, 4096> buffer{};
  while (const std::size_t count = fread(buffer.data(), 1, buffer.size(), pipe.get()))
    output.text.append(buffer.data(), count);
  output.succeeded = !output.text.empty();
  return output;
}

}  // namespace tavi::host
