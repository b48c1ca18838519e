#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace tavi::testing {

/// An empty folder for one test, removed at its end.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name =
        "tavi-" + std::to_string(getpid()) + "-" + std::string(test->test_suite_name()) + "-" + test->name();
    // Names of parameterized tests hold slashes.
    std::replace(name.begin(), name.end(), '/', '-');
    path_ = std::filesystem::temp_directory_path() / name;
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  /// The path with slashes.
  [[nodiscard]] std::string Path() const { return path_.string(); }
  [[nodiscard]] std::string Path(const std::string& name) const { return (path_ / name).string(); }

  void MakeFolder(const std::string& name) const { std::filesystem::create_directories(path_ / name); }
  void WriteFile(const std::string& name, const std::string& content) const {
    std::filesystem::create_directories((path_ / name).parent_path());
    std::ofstream(path_ / name, std::ios::binary) << content;
  }
  [[nodiscard]] std::string ReadFile(const std::string& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  [[nodiscard]] bool Has(const std::string& name) const { return std::filesystem::exists(path_ / name); }
  [[nodiscard]] std::size_t FileCount() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
  }

 private:
  std::filesystem::path path_;
};

}  // namespace tavi::testing
