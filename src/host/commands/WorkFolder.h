#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "access/file/FileSystem.h"

namespace tavi::host {

/// The private folder beside a club's file in which another one is made: FILE.work, which nobody but its owner may
/// enter. Copies of members' data lie here and nowhere else. It is gone at the end of this object's life; what a run
/// that was stopped has left in it the next one clears before it begins, and so does every command that uses the club.
class WorkFolder {
 public:
  /// Makes the folder, and first those that the club's file is to lie in. Raises InvalidArgument when that cannot be
  /// done, or another program that is still running works in it. `clubFile` is a path of the system.
  explicit WorkFolder(const std::string& clubFile);
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  [[nodiscard]] const std::string& Path() const { return path_; }
  /// The path of a file in it.
  [[nodiscard]] std::string File(const std::string& name) const;
  /// The draft of the club's file.
  [[nodiscard]] std::string Draft() const;

  /// Removes what a stopped run has left, unless another one is working there. Where it cannot be removed the next run
  /// of its kind says so. `clubFile` is any path of the club's file.
  static void ClearLeftBehind(const std::string& clubFile);

 private:
  /// Folders that were made for this one, durably, so that what lies in them is; those that are still empty at the end
  /// go again.
  class OuterFolders {
   public:
    OuterFolders(access::FileSystem& fileSystem, const std::string& folder);
    ~OuterFolders();
    OuterFolders(const OuterFolders&) = delete;
    OuterFolders& operator=(const OuterFolders&) = delete;

   private:
    std::vector<std::string> made_;  // the innermost first
  };

  [[nodiscard]] bool Enter();

  std::shared_ptr<access::FileSystem> fileSystem_;
  OuterFolders outer_;
  std::string path_;
  std::unique_ptr<access::File> lock_;  // held while this object lives; the system drops it when the process ends
};

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
