#include "access/file/ForeignUse.h"

#include <algorithm>
#include <array>
#include <exception>
#include <limits>
#include <span>

#include "access/file/Format.h"
#include "platform/values/Error.h"

// The lock file of Access beside a database: NAME.ldb with 64 bytes for each user. Its bytes are left behind when a
// program dies, its locks are not; so who is there is asked of the locks, and the bytes only give the names. Example,
// the first slot of user Admin on the computer SCORER:
//   53 43 4f 52 45 52 00 ... (32 bytes)  41 64 6d 69 6e 00 ... (32 bytes)

namespace tavi::access {

namespace {

using namespace format::lock_file;

constexpr std::uint64_t kWholeFile = std::numeric_limits<std::uint64_t>::max();
// More would make no better message.
constexpr std::size_t kUsersNamed = 5;

using Slot = std::array<std::uint8_t, kSlotSize>;

/// The extension is replaced, whatever it is; a point in a folder's name is none.
std::string PathOfLockFile(const std::string& databasePath) {
  const std::size_t nameStart = databasePath.find_last_of("/\\") + 1;  // 0 when there is no folder
  const std::size_t dot = databasePath.find_last_of('.');
  const bool hasExtension = dot != std::string::npos && dot > nameStart;
  return (hasExtension ? databasePath.substr(0, dot) : databasePath) + ".ldb";
}

/// The name up to its zero, without the blanks that fill it up; what is not printable becomes a question mark, as the
/// name is shown in messages, and the file may hold anything.
std::string NameIn(std::span<const std::uint8_t> field) {
  std::string name(field.begin(), std::find(field.begin(), field.end(), std::uint8_t{0}));
  name.erase(name.find_last_not_of(' ') + 1);
  std::replace_if(
      name.begin(), name.end(), [](char letter) { return letter < ' ' || letter > '~'; }, '?');
  return name;
}

/// Of an entry without a computer nothing can be said.
std::string UserIn(const Slot& slot) {
  const std::string computer = NameIn(std::span(slot).first<kNameSize>());
  const std::string user = NameIn(std::span(slot).last<kNameSize>());
  if (computer.empty()) return {};
  return (user.empty() ? "somebody" : "user " + user) + " on computer " + computer;
}

/// Those whose place is locked; where none is, although the file has locks, all who are named.
std::vector<std::string> UsersIn(File& file) {
  std::vector<std::string> present;
  std::vector<std::string> named;
  const std::uint64_t slots = std::min<std::uint64_t>(kMaximumUsers, file.Size() / kSlotSize);
  for (std::uint64_t i = 0; i < slots; ++i) {
    Slot slot{};
    file.ReadAt(i * kSlotSize, slot);
    const std::string user = UserIn(slot);
    if (user.empty()) continue;
    named.push_back(user);
    if (file.IsLockedByOther(kFirstUserLock + i, 1)) present.push_back(user);
  }
  return present.empty() ? named : present;
}

}  // namespace

std::string ForeignUse::Describe() const {
  std::string list;
  for (std::size_t i = 0; i < std::min(users.size(), kUsersNamed); ++i) list += (i == 0 ? "" : ", ") + users[i];
  if (users.size() > kUsersNamed) list += ", ...";
  return "Another database program has it open" + (list.empty() ? list : " (" + list + ")") + ", as its lock file '" +
         lockPath + "' shows";
}

std::optional<ForeignUse> FindForeignUse(FileSystem& fileSystem, const std::string& databasePath) {
  ForeignUse use{PathOfLockFile(databasePath), {}};
  if (!fileSystem.Exists(use.lockPath)) return std::nullopt;
  try {
    const auto file = fileSystem.Open(use.lockPath, FileSystem::OpenMode::ReadOnly);
    // Left behind by a program that died, or by nobody who is still there.
    if (!file->IsLockedByOther(0, kWholeFile)) return std::nullopt;
    use.users = UsersIn(*file);
    return use;
  } catch (const Error&) {
    // Its last user may have removed it meanwhile.
    if (!fileSystem.Exists(use.lockPath)) return std::nullopt;
    throw;
  }
}

LockFileHold::LockFileHold(FileSystem& fileSystem, const std::string& databasePath)
    : fileSystem_(fileSystem), databasePath_(databasePath), path_(PathOfLockFile(databasePath)) {}

// Tried again before each change: who had it open for writing may have gone.
void LockFileHold::Try() {
  if (file_ == nullptr) file_ = fileSystem_.HoldUnwritten(path_);
}

std::optional<ForeignUse> LockFileHold::FindUse() const {
  return IsHeld() ? std::nullopt : FindForeignUse(fileSystem_, databasePath_);
}

void LockFileHold::Release(bool isLast) noexcept {
  if (file_ == nullptr) return;
  try {
    const bool isEmpty = file_->Size() == 0;
    file_.reset();
    if (isLast && isEmpty) fileSystem_.Remove(path_);
  } catch (const std::exception&) {
    // Another database program has come in the moment before, and needs it; else an empty file does no harm.
  }
}

}  // namespace tavi::access
