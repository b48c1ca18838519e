#pragma once

#include <filesystem>
#include <string>

namespace tavi::host {

/// A copy of an Access file, with the redo log that lies beside it, in a folder that only its owner may enter; gone at
/// the end. Working on it leaves the file itself as it is, whatever opening it brings about.
class TemporaryCopy {
 public:
  /// What keeps it from being opened at all is mended: an end that is no whole page is filled up, and a first page that
  /// is none of an Access file gives way to that of a new file. Raises InvalidArgument when the file
  /// is missing or cannot be copied.
  explicit TemporaryCopy(const std::filesystem::path& original);
  ~TemporaryCopy();
  TemporaryCopy(const TemporaryCopy&) = delete;
  TemporaryCopy& operator=(const TemporaryCopy&) = delete;

  [[nodiscard]] std::string Path() const;

 private:
  void Copy(const std::filesystem::path& original) const;
  void ReplaceFirstPage() const;

  std::filesystem::path folder_;
  std::filesystem::path file_;
};

}  // namespace tavi::host
