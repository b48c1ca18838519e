#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <system_error>

namespace tavi::testing {

/// An empty folder for one test, removed at its end.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = "tavi-" + std::to_string(std::random_device{}()) + "-" + std::string(test->test_suite_name()) +
                       "-" + test->name();
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

  /// Its path as this system writes it, in UTF-8 like all texts here.
  [[nodiscard]] std::string Path() const { return path_.string(); }
  [[nodiscard]] std::string Path(const std::string& name) const { return At(name).string(); }

  void MakeFolder(const std::string& name) const { std::filesystem::create_directories(At(name)); }
  void WriteFile(const std::string& name, const std::string& content) const {
    std::filesystem::create_directories(At(name).parent_path());
    std::ofstream(At(name), std::ios::binary) << content;
  }
  [[nodiscard]] std::string ReadFile(const std::string& name) const {
    std::ifstream file(At(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  /// Copies a file of the folder, over another one where there is one.
  void CopyFile(const std::string& from, const std::string& to) const {
    std::filesystem::remove(At(to));
    std::filesystem::copy_file(At(from), At(to));
  }
  [[nodiscard]] bool Has(const std::string& name) const { return std::filesystem::exists(At(name)); }
  [[nodiscard]] std::size_t FileCount() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
  }

 private:
  [[nodiscard]] std::filesystem::path At(const std::string& name) const {
    return path_ / std::u8string(name.begin(), name.end());
  }

  std::filesystem::path path_;
};

}  // namespace tavi::testing
