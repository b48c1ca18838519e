#pragma once

#include <filesystem>
#include <string>

#include "host/tools/WorkFolder.h"

namespace tavi::host {

/// A copy of an Access file, with the redo log that lies beside it. Working on it leaves the file itself as it is,
/// whatever opening it brings about.
class TemporaryCopy {
 public:
  /// Copies into a work folder, with which the copy goes. What keeps it from being opened at all is mended: an end that
  /// is no whole page is filled up, a first page that is none of an Access file gives way to that of a new file, and a
  /// log that does not belong to the file is left out.
  /// Raises InvalidArgument when the file is missing or cannot be copied.
  TemporaryCopy(const WorkFolder& folder, const std::filesystem::path& original);

  [[nodiscard]] std::string Path() const;
  [[nodiscard]] bool IsLogLeftOut() const { return isLogLeftOut_; }

 private:
  void Copy(const std::filesystem::path& original) const;
  void BringLogIn();
  void ReplaceFirstPage() const;

  const WorkFolder& folder_;
  std::filesystem::path file_;
  bool isLogLeftOut_ = false;
};

}  // namespace tavi::host
