#pragma once

#include <filesystem>
#include <string>

namespace tavi::access::test {

/// A folder of its own for one test, removed with all that is in it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  /// The path of a file in it; UTF-8, as all texts here.
  [[nodiscard]] std::string File(const std::string& name) const {
    return (path_ / std::u8string(name.begin(), name.end())).string();
  }
  [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tavi::access::test
