#include "access/file/support/MemoryFileSystem.h"

#include <algorithm>
#include <random>
#include <span>
#include <utility>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"

namespace tavi::access::test {

namespace {

std::uint64_t EndOf(std::uint64_t offset, std::uint64_t length) {
  return length > ~std::uint64_t{0} - offset ? ~std::uint64_t{0} : offset + length;
}

}  // namespace

class MemoryFile final : public File {
 public:
  using Node = MemoryFileSystem::Node;
  using Lock = MemoryFileSystem::Lock;

  MemoryFile(MemoryFileSystem& system, std::shared_ptr<Node> node, std::string path, bool isReadOnly)
      : system_(system), node_(std::move(node)), path_(std::move(path)), isReadOnly_(isReadOnly) {}
  ~MemoryFile() override {
    std::erase_if(node_->locks, [this](const Lock& lock) { return lock.opener == this; });
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  void ReadAt(std::uint64_t offset, std::span<std::uint8_t> target) override {
    if (EndOf(offset, target.size()) > node_->bytes.Size())
      RaiseFailure("Could not read '" + path_ + "': the file ends.");
    node_->bytes.Read(offset, target);
  }

  void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> source) override {
    RequireWritable();
    const std::uint64_t size = node_->bytes.Size();
    const std::uint64_t growth = offset + source.size() > size ? offset + source.size() - size : 0;
    const std::uint64_t room = system_.capacity_ - std::min(system_.capacity_, system_.BytesUsed());
    const bool fits = growth <= room;
    if (!fits)
      source =
          source.first(source.size() - static_cast<std::size_t>(std::min<std::uint64_t>(growth - room, source.size())));
    if (!source.empty()) {
      Change({offset, std::make_shared<const MemoryFileSystem::Bytes>(source.begin(), source.end())});
    }
    if (!fits) RaiseFailure("Could not write '" + path_ + "': No space left on device.");
  }

  std::uint64_t Size() override { return node_->bytes.Size(); }

  void Truncate(std::uint64_t size) override {
    RequireWritable();
    Change({size, nullptr});
  }

  void Sync() override {
    const std::optional<std::uint32_t> seed = std::exchange(node_->failingFlush, std::nullopt);
    if (seed) {
      std::mt19937 random(*seed);
      MemoryFileSystem::ApplySome(node_->unflushed, node_->durable, [&random](std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
      });
    } else {
      // What an earlier flush has lost is not on the device even now.
      for (const auto& change : node_->unflushed) MemoryFileSystem::Apply(change, node_->durable);
    }
    node_->unflushed.clear();
    node_->durableTimes = node_->times;
    if (seed) RaiseFailure("Could not flush '" + path_ + "': Input/output error.");
  }

  FileTimes Times() override { return node_->times; }
  void StampNow() noexcept override { node_->times = system_.Tick(); }
  FileIdentity Identity() override {
    const auto names = std::count_if(system_.names_.begin(), system_.names_.end(),
                                     [this](const auto& entry) { return entry.second == node_; });
    return {node_->number, static_cast<std::uint64_t>(names)};
  }
  bool IsStillAt(const std::string& path) override { return system_.Find(path) == node_; }
  std::unique_ptr<File> OpenAgain() override {
    return std::make_unique<MemoryFile>(system_, node_, path_, isReadOnly_);
  }
  bool IsReadOnly() const override { return isReadOnly_; }

  bool TryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
    if (kind == LockKind::Exclusive) RequireWritable();
    const std::uint64_t end = EndOf(offset, length);
    for (const Lock& lock : node_->locks) {
      const bool excludes = kind == LockKind::Exclusive || lock.kind == LockKind::Exclusive;
      if (lock.opener != this && lock.start < end && offset < lock.end && excludes) return false;
    }
    RemoveOwn(offset, end);
    node_->locks.push_back({this, offset, end, kind});
    return true;
  }

  void Unlock(std::uint64_t offset, std::uint64_t length) override { RemoveOwn(offset, EndOf(offset, length)); }

  bool IsLockedByOther(std::uint64_t offset, std::uint64_t length) override {
    const std::uint64_t end = EndOf(offset, length);
    return std::any_of(node_->locks.begin(), node_->locks.end(),
                       [&](const Lock& lock) { return lock.opener != this && lock.start < end && offset < lock.end; });
  }

  std::string LockHolder(std::uint64_t offset, std::uint64_t length) override {
    return IsLockedByOther(offset, length) ? "process 4711" : "";
  }

 private:
  void RequireWritable() const {
    if (isReadOnly_) RaiseFailure("Could not write '" + path_ + "': it was opened for reading.");
  }

  void Change(MemoryFileSystem::Change change) {
    MemoryFileSystem::Apply(change, node_->bytes);
    node_->unflushed.push_back(std::move(change));
    node_->times = system_.Tick();
  }

  void RemoveOwn(std::uint64_t start, std::uint64_t end) {
    std::vector<Lock> kept;
    for (const Lock& lock : node_->locks) {
      if (lock.opener != this || lock.end <= start || end <= lock.start) {
        kept.push_back(lock);
        continue;
      }
      if (lock.start < start) kept.push_back({this, lock.start, start, lock.kind});
      if (end < lock.end) kept.push_back({this, end, lock.end, lock.kind});
    }
    node_->locks = std::move(kept);
  }

  MemoryFileSystem& system_;
  std::shared_ptr<Node> node_;
  std::string path_;
  bool isReadOnly_;
};

class MemoryWork final : public BackgroundWork {
 public:
  MemoryWork(MemoryFileSystem& system, std::function<void()> work) : system_(system), work_(std::move(work)) {
    system_.works_.push_back(this);
  }
  ~MemoryWork() override { std::erase(system_.works_, this); }
  MemoryWork(const MemoryWork&) = delete;
  MemoryWork& operator=(const MemoryWork&) = delete;

  void Ask() override { isAsked_ = true; }
  void Settle() override { isAsked_ = false; }
  [[nodiscard]] bool IsAsked() const { return isAsked_; }
  void Run() {
    if (std::exchange(isAsked_, false)) work_();
  }

 private:
  MemoryFileSystem& system_;
  std::function<void()> work_;
  bool isAsked_ = false;
};

void MemoryFileSystem::Apply(const Change& change, SharedBytes& bytes) {
  if (change.bytes == nullptr) {
    bytes.Resize(change.offset);
  } else {
    bytes.Write(change.offset, *change.bytes);
  }
}

std::shared_ptr<MemoryFileSystem::Node> MemoryFileSystem::Find(const std::string& path) const {
  const auto link = links_.find(path);
  const auto found = names_.find(link == links_.end() ? path : link->second);
  return found == names_.end() ? nullptr : found->second;
}

std::unique_ptr<File> MemoryFileSystem::Open(const std::string& path, OpenMode mode) {
  std::shared_ptr<Node> node = Find(path);
  if (mode == OpenMode::CreateNew) {
    if (node) RaiseFailure("Could not create '" + path + "': File exists.");
    if (folderIsReadOnly_) RaiseFailure("Could not create '" + path + "': Permission denied.");
    node = std::make_shared<Node>();
    node->times = Tick();
    node->number = static_cast<std::uint64_t>(++clock_);
    names_[path] = node;
    NamesChanged();
  }
  if (!node) RaiseFailure("Could not open '" + path + "': No such file or directory.");
  if (mode == OpenMode::ReadWrite && node->isReadOnly)
    RaiseFailure("Could not open '" + path + "': Permission denied.");
  return std::make_unique<MemoryFile>(*this, node, path, mode == OpenMode::ReadOnly);
}

bool MemoryFileSystem::Exists(const std::string& path) {
  return Find(path) != nullptr;
}

bool MemoryFileSystem::IsWritable(const std::string& path) {
  const auto node = Find(path);
  return node && !node->isReadOnly && !folderIsReadOnly_;
}

std::string MemoryFileSystem::CanonicalPath(const std::string& path) {
  const auto link = links_.find(path);
  return link == links_.end() ? path : link->second;
}

void MemoryFileSystem::Remove(const std::string& path) {
  if (names_.erase(path) == 0) RaiseFailure("Could not remove '" + path + "': No such file or directory.");
  NamesChanged();
}

void MemoryFileSystem::Rename(const std::string& from, const std::string& to) {
  const auto node = Find(from);
  if (!node || folderIsReadOnly_) RaiseFailure("Could not rename '" + from + "'.");
  names_.erase(from);
  names_[to] = node;
  NamesChanged();
}

void MemoryFileSystem::CopyPermissions(const std::string& from, const std::string& to) {
  if (const auto source = Find(from), target = Find(to); source && target) target->isReadOnly = source->isReadOnly;
}

void MemoryFileSystem::SyncFolderOf(const std::string& /*path*/) {
  durableNames_ = names_;
  unflushedNames_.clear();
}

void MemoryFileSystem::Pause(std::chrono::milliseconds duration) {
  paused_ += duration;
  // A copy: the action may put another one in its place.
  if (const std::function<void()> action = onPause_) action();
}

std::unique_ptr<BackgroundWork> MemoryFileSystem::NewBackgroundWork(std::chrono::milliseconds /*delay*/,
                                                                    std::function<void()> work) {
  return std::make_unique<MemoryWork>(*this, std::move(work));
}

void MemoryFileSystem::RunBackgroundWork() {
  const std::vector<MemoryWork*> works = works_;
  for (MemoryWork* work : works) work->Run();
}

void MemoryFileSystem::AddHardLink(const std::string& name, const std::string& path) {
  names_[name] = Find(path);
  NamesChanged();
}

bool MemoryFileSystem::HasBackgroundWork() const {
  return std::any_of(works_.begin(), works_.end(), [](const MemoryWork* work) { return work->IsAsked(); });
}

void MemoryFileSystem::FailNextFlush(const std::string& path, std::uint32_t seed) {
  if (const auto node = Find(path)) node->failingFlush = seed;
}

MemoryFileSystem::Bytes MemoryFileSystem::Contents(const std::string& path) const {
  const auto node = Find(path);
  return node ? node->bytes.ToVector() : Bytes{};
}

std::uint64_t MemoryFileSystem::Sum() const {
  std::uint64_t sum = 0;
  for (const auto& [path, node] : names_) {
    sum = Checksum(sum, std::span(reinterpret_cast<const std::uint8_t*>(path.data()), path.size()));
    sum = Checksum(sum ^ node->bytes.Sum(), {});
  }
  return sum;
}

void MemoryFileSystem::SetContents(const std::string& path, const Bytes& bytes) {
  std::shared_ptr<Node> node = Find(path);
  if (!node) {
    node = std::make_shared<Node>();
    node->number = static_cast<std::uint64_t>(++clock_);
    names_[path] = node;
    durableNames_[path] = node;
  }
  node->bytes = SharedBytes(bytes);
  node->durable = node->bytes;
  node->unflushed.clear();
  node->times = node->durableTimes = Tick();
}

FileTimes MemoryFileSystem::Tick() {
  ++clock_;
  return {clock_, keepsChangeTimes_ ? clock_ : 0};
}

std::int64_t MemoryFileSystem::Stamp(const std::string& path) const {
  const auto node = Find(path);
  return node ? node->times.written : 0;
}

void MemoryFileSystem::SetStamp(const std::string& path, std::int64_t stamp) {
  if (const auto node = Find(path)) node->times = node->durableTimes = {stamp, Tick().changed};
}

std::vector<std::string> MemoryFileSystem::Paths() const {
  std::vector<std::string> paths;
  for (const auto& entry : names_) paths.push_back(entry.first);
  return paths;
}

void MemoryFileSystem::SetReadOnly(const std::string& path, bool readOnly) {
  if (const auto node = Find(path)) node->isReadOnly = readOnly;
}

std::uint64_t MemoryFileSystem::BytesUsed() const {
  std::uint64_t used = 0;
  for (const auto& entry : names_) used += entry.second->bytes.Size();
  return used;
}

std::shared_ptr<MemoryFileSystem> MemoryFileSystem::AfterCrash(CrashKind kind, std::uint32_t seed) const {
  std::mt19937 random(seed);
  const auto choose = [&random](std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
  };

  // A folder's changes become durable in their order.
  const Names* names = kind == CrashKind::Kept ? &names_ : &durableNames_;
  if (kind == CrashKind::Torn) {
    const std::size_t done = choose(unflushedNames_.size() + 1);
    if (done > 0) names = &unflushedNames_[done - 1];
  }
  auto after = std::make_shared<MemoryFileSystem>();
  after->clock_ = clock_;
  after->keepsChangeTimes_ = keepsChangeTimes_;
  for (const auto& [path, node] : *names) {
    const auto found = std::make_shared<Node>();
    found->bytes = kind == CrashKind::Kept ? node->bytes : node->durable;
    if (kind == CrashKind::Torn) ApplySome(node->unflushed, found->bytes, choose);
    found->durable = found->bytes;
    found->isReadOnly = node->isReadOnly;
    const bool isLate = kind == CrashKind::Kept || (kind == CrashKind::Torn && choose(2) == 0);
    found->times = found->durableTimes = isLate ? node->times : node->durableTimes;
    found->number = node->number;
    after->names_[path] = found;
  }
  after->durableNames_ = after->names_;
  return after;
}

// Applies each change whole, not at all, its first or last part, or some of it; a sector is never torn.
void MemoryFileSystem::ApplySome(const std::vector<Change>& changes, SharedBytes& bytes,
                                 const std::function<std::size_t(std::size_t)>& choose) {
  enum Fate : std::size_t { Whole, Not, FirstPart, LastPart, SomeSectors, kFates };
  for (const Change& change : changes) {
    const auto fate = static_cast<Fate>(choose(kFates));
    if (fate == Not) continue;
    if (fate == Whole || change.bytes == nullptr) {
      Apply(change, bytes);
      continue;
    }
    const std::span<const std::uint8_t> all(*change.bytes);
    const std::uint64_t end = change.offset + all.size();
    const std::uint64_t cut = change.offset + choose(all.size() + 1);
    for (std::uint64_t start = change.offset; start < end;) {
      const std::uint64_t next = std::min(end, (start / kSectorSize + 1) * kSectorSize);
      const bool isKept = fate == FirstPart ? next <= cut : fate == LastPart ? start >= cut : choose(2) == 0;
      if (isKept)
        bytes.Write(start, all.subspan(static_cast<std::size_t>(start - change.offset),
                                       static_cast<std::size_t>(next - start)));
      start = next;
    }
  }
}

}  // namespace tavi::access::test
