#include "host/commands/WorkFolder.h"

#include <algorithm>
#include <filesystem>

#include "host/text/PathText.h"
#include "platform/values/Error.h"

// The life of a work folder. It is made private before anything lies in it, then a lock file is made in it and locked;
// the system drops the lock with the process, however that ends. So of a folder that is there exactly one is true:
//
//   its lock is held       a run is working in it: nothing is touched
//   its lock is free       a run was stopped: what lies in it is removed, and the folder with it or used again
//   it has no lock file    it is empty, or a run is just making it
//
// Two runs may clear and make the folder at the same moment; so after the lock has been taken it is asked whether the
// file that was locked is still the one of this name, and if not, all is begun again.
namespace tavi::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kEnding = ".work";
constexpr const char* kLockName = "lock";
constexpr const char* kDraftName = "ClubMembers.mdb";
/// Another run may take the folder away while this one enters it, which nobody does twice in a moment.
constexpr int kMostAttempts = 5;

[[noreturn]] void RefuseFolder(const std::string& why) {
  throw Error(ErrorNumber::InvalidArgument, "tavi", why);
}

/// For what is only tidied up: a file that stays is met by the next run.
void RemoveQuietly(const std::string& path) {
  std::error_code ignored;
  fs::remove(PathOf(path), ignored);
}

/// Removes what a folder holds, but for its lock.
/// The lock goes last: as long as there is anything, there is a lock to tell whose it is.
void EmptyFolder(const std::string& folder) {
  std::error_code ignored;
  for (const std::string& name : NamesIn(folder, ignored)) {
    if (name != kLockName) RemoveAll(JoinPath(folder, name));
  }
}

/// True for a folder that is there and this user's own; no link to another one.
/// Somebody else's folder of this name must not be emptied, and a link would lead the removal elsewhere.
bool IsOwnFolder(const std::string& path) {
  std::error_code ignored;
  return fs::is_directory(fs::symlink_status(PathOf(path), ignored)) && !MakePrivateFolder(path);
}

/// Empties a work folder that no run is working in. True when it can go, now that the lock has been closed, which some
/// systems wait for. Raises what opening the lock raises.
bool ClearUnlessInUse(access::FileSystem& fileSystem, const std::string& folder) {
  const std::string lockPath = JoinPath(folder, kLockName);
  // Without its lock it is empty, or another run is just making it.
  if (!fileSystem.Exists(lockPath)) return true;
  const std::unique_ptr<access::File> lock = fileSystem.Open(lockPath, access::FileSystem::OpenMode::ReadWrite);
  if (!lock->TryLock(0, 1, access::File::LockKind::Exclusive) || !lock->IsStillAt(lockPath)) return false;
  EmptyFolder(folder);
  RemoveQuietly(lockPath);
  return true;
}

}  // namespace

WorkFolder::OuterFolders::OuterFolders(access::FileSystem& fileSystem, const std::string& folder) {
  std::error_code ignored;
  // Outwards until one is there: just those are to be made, and to be taken away again when nothing comes of it.
  for (std::string missing = folder; !missing.empty() && !fs::exists(PathOf(missing), ignored);) {
    made_.push_back(missing);
    std::string outer = SplitPath(missing).folder;
    if (outer == missing) break;
    missing = std::move(outer);
  }
  if (const std::error_code code = MakeFolders(folder)) {
    for (const std::string& made : made_) RemoveQuietly(made);
    RefuseFolder("the folder " + folder + " cannot be made: " + ReasonOf(code));
  }
  // The entry of a new folder is in the one around it, which has to reach the disk as the file will.
  for (const std::string& made : made_) fileSystem.SyncFolderOf(made);
}

WorkFolder::OuterFolders::~OuterFolders() {
  for (const std::string& made : made_) {
    std::error_code unknown;
    // From the inside out: one that holds anything, such as the new club, keeps those around it, too.
    if (!NamesIn(made, unknown).empty() || unknown) return;
    RemoveQuietly(made);
  }
}

WorkFolder::WorkFolder(const std::string& clubFile)
    : fileSystem_(access::NativeFileSystem()),
      outer_(*fileSystem_, SplitPath(clubFile).folder),
      path_(clubFile + kEnding) {
  for (int attempt = 1; !Enter(); ++attempt) {
    if (attempt == kMostAttempts)
      RefuseFolder("the folder " + path_ + " is made and removed again and again; try again");
  }
  EmptyFolder(path_);
}

WorkFolder::~WorkFolder() {
  // The lock is given back last: as long as anything is in the folder, another run can tell that it is in use.
  EmptyFolder(path_);
  RemoveQuietly(File(kLockName));
  RemoveQuietly(path_);
  lock_.reset();
  // Some systems remove no folder while a file that lay in it is open.
  RemoveQuietly(path_);
}

std::string WorkFolder::Draft() const {
  return File(kDraftName);
}

void WorkFolder::ClearLeftBehind(const std::string& clubFile) {
  const std::shared_ptr<access::FileSystem> fileSystem = access::NativeFileSystem();
  const std::string work = fileSystem->CanonicalPath(clubFile) + kEnding;
  if (!IsOwnFolder(work)) return;
  try {
    if (ClearUnlessInUse(*fileSystem, work)) RemoveQuietly(work);
  } catch (const Error&) {
    return;
  }
}

std::string WorkFolder::File(const std::string& name) const {
  return JoinPath(path_, name);
}

// False when another run has removed the folder or its lock meanwhile.
bool WorkFolder::Enter() {
  if (const std::error_code code = MakePrivateFolder(path_))
    RefuseFolder("the folder " + path_ + " cannot be made: " + ReasonOf(code));
  const std::string lockPath = File(kLockName);
  try {
    using Mode = access::FileSystem::OpenMode;
    lock_ = fileSystem_->Open(lockPath, fileSystem_->Exists(lockPath) ? Mode::ReadWrite : Mode::CreateNew);
  } catch (const Error& error) {
    // The folder has gone, or the lock has come, between two calls: another run was quicker, which a second look
    // settles.
    if (!fs::exists(PathOf(path_)) || fileSystem_->Exists(lockPath)) return false;
    // Where there is no room for the lock the folder is not needed; of another run it is not empty.
    RemoveQuietly(path_);
    throw;
  }
  if (!lock_->TryLock(0, 1, access::File::LockKind::Exclusive)) {
    RefuseFolder("another program is making or recovering this club: it works in the folder " + path_ +
                 ". Wait until it has finished.");
  }
  return lock_->IsStillAt(lockPath);
}

}  // namespace tavi::host
