#include "host/tools/WorkFolder.h"

#include <algorithm>
#include <filesystem>

#include "host/text/PathText.h"
#include "platform/values/Error.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kEnding = ".work";
constexpr const char* kDoneEnding = ".done";
constexpr const char* kLockName = "lock";
constexpr const char* kDraftName = "ClubMembers.mdb";
constexpr const char* kMarkName = "going-to-its-place";
/// Another run may take the folder away while this one enters it, which nobody does twice in a moment.
constexpr int kMostAttempts = 5;

[[noreturn]] void RefuseFolder(const std::string& why) {
  throw Error(ErrorNumber::InvalidArgument, "tavi", why);
}

void RemoveQuietly(const std::string& path) {
  std::error_code ignored;
  fs::remove(PathOf(path), ignored);
}

bool HasEntry(const fs::path& folder, const char* name) {
  std::error_code ignored;
  return fs::exists(folder / name, ignored);
}

/// Removes what a folder holds, but for some names. It keeps the time of its last change, by which a run that had come
/// to its end is known.
void EmptyFolder(const std::string& folder, const std::vector<std::string>& kept) {
  std::error_code ignored;
  const auto changed = fs::last_write_time(PathOf(folder), ignored);
  bool isChanged = false;
  for (const std::string& name : NamesIn(folder, ignored)) {
    if (std::ranges::find(kept, name) != kept.end()) continue;
    RemoveAll(JoinPath(folder, name));
    isChanged = true;
  }
  if (isChanged) fs::last_write_time(PathOf(folder), changed, ignored);
}

/// True for a folder that is there and this user's own; no link to another one.
bool IsOwnFolder(const std::string& path) {
  std::error_code ignored;
  return fs::is_directory(fs::symlink_status(PathOf(path), ignored)) && !MakePrivateFolder(path);
}

/// Empties a work folder that no run is working in. True when it can go, now that the lock has been closed, which some
/// systems wait for: nothing that a later run goes by lies in it.
/// Raises what opening the lock raises.
bool ClearUnlessInUse(access::FileSystem& fileSystem, const std::string& folder) {
  // Without its lock it is empty, or another run is just making it.
  if (!HasEntry(PathOf(folder), kLockName)) return true;
  const std::string lockPath = JoinPath(folder, kLockName);
  const std::unique_ptr<access::File> lock = fileSystem.Open(lockPath, access::FileSystem::OpenMode::ReadWrite);
  if (!lock->TryLock(0, 1, access::File::LockKind::Exclusive) || !lock->IsStillAt(lockPath)) return false;
  const bool isDone = HasEntry(PathOf(folder), kMarkName) && !HasEntry(PathOf(folder), kDraftName);
  EmptyFolder(folder, isDone ? std::vector<std::string>{kLockName, kMarkName} : std::vector<std::string>{kLockName});
  if (!isDone) RemoveQuietly(lockPath);
  return !isDone;
}

}  // namespace

WorkFolder::OuterFolders::OuterFolders(const std::string& folder) {
  std::error_code ignored;
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
}

WorkFolder::OuterFolders::~OuterFolders() {
  for (const std::string& made : made_) {
    std::error_code unknown;
    if (!NamesIn(made, unknown).empty() || unknown) return;
    RemoveQuietly(made);
  }
}

WorkFolder::WorkFolder(const std::string& clubFile)
    : outer_(SplitPath(clubFile).folder),
      path_(clubFile + kEnding),
      donePath_(clubFile + kDoneEnding),
      fileSystem_(access::NativeFileSystem()) {
  for (int attempt = 1; !Enter(); ++attempt) {
    if (attempt == kMostAttempts)
      RefuseFolder("the folder " + path_ + " is made and removed again and again; try again");
  }
  Clear();
  RemoveAll(donePath_);
}

WorkFolder::~WorkFolder() {
  std::error_code notRenamed;
  const bool isDone = fileSystem_->Exists(File(kMarkName)) && !fileSystem_->Exists(Draft());
  if (isDone) fs::rename(PathOf(path_), PathOf(donePath_), notRenamed);
  const bool isRenamed = isDone && !notRenamed;
  const std::string& left = isRenamed ? donePath_ : path_;
  if (isRenamed) {
    RemoveAll(left);
  } else {
    Clear();
    RemoveQuietly(File(kLockName));
    RemoveQuietly(left);
  }
  lock_.reset();
  // Some systems remove no folder while a file that lay in it is open.
  if (!fileSystem_->Exists(left)) return;
  if (isRenamed) {
    RemoveAll(left);
  } else {
    RemoveQuietly(left);
  }
}

std::string WorkFolder::Draft() const {
  return File(kDraftName);
}

void WorkFolder::Mark() const {
  static_cast<void>(fileSystem_->Open(File(kMarkName), access::FileSystem::OpenMode::CreateNew));
}

// The folder was changed after the last write into the draft, whose time the file in the place has kept.
bool WorkFolder::WasLeftWhenDone(const std::string& clubFile) {
  const fs::path work = PathOf(clubFile + kEnding);
  const fs::path done = PathOf(clubFile + kDoneEnding);
  const bool isMarked = HasEntry(work, kMarkName) && !HasEntry(work, kDraftName);
  std::error_code unknown;
  if (!isMarked && !fs::exists(done, unknown)) return false;
  const auto changed = fs::last_write_time(isMarked ? work : done, unknown);
  const auto written = fs::last_write_time(PathOf(clubFile), unknown);
  return !unknown && written <= changed;
}

void WorkFolder::ClearLeftBehind(const std::string& clubFile) {
  const std::shared_ptr<access::FileSystem> fileSystem = access::NativeFileSystem();
  const std::string place = fileSystem->CanonicalPath(clubFile);
  const std::string done = place + kDoneEnding;
  if (IsOwnFolder(done)) EmptyFolder(done, {});
  const std::string work = place + kEnding;
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
    if (fs::exists(PathOf(path_)) && !fileSystem_->Exists(lockPath)) throw;
    return false;
  }
  if (!lock_->TryLock(0, 1, access::File::LockKind::Exclusive)) {
    RefuseFolder("another program is making or recovering this club: it works in the folder " + path_ +
                 ". Wait until it has finished.");
  }
  return lock_->IsStillAt(lockPath);
}

void WorkFolder::Clear() const {
  EmptyFolder(path_, {kLockName});
}

}  // namespace tavi::host
