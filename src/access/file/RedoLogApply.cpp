// A redo log is brought into its database file, and dropped; first it is made sure that it is its file.
//
// A checkpoint goes: images of all logged pages into the log, the applying mark, a flush of the log; then new pages,
// old pages, the length and the time of the file, a flush of the file; then the applied mark, and the log goes. A crash
// before the flush of the log leaves the file untouched. After it the file may hold any mixture of old and new sectors,
// and the log has images of all of them, so it is done once more from the start. A crash behind the flush of the file
// leaves a log that says nothing new.
#include <algorithm>
#include <array>

#include "access/file/EngineError.h"
#include "access/file/RedoLog.h"
#include "access/file/Replacement.h"

namespace tavi::access {

using namespace log_layout;

// ---------------------------------------------------------------------------------------------------------------------
// Whose log it is
// ---------------------------------------------------------------------------------------------------------------------

bool RedoLog::ApplyingHasBegun() const {
  const std::optional<std::uint64_t> mark = header_.Applying();
  return mark && *mark <= end_;
}

bool RedoLog::BelongsTo(File& database, Proof proof) {
  const LogOwner owner = header_.Owner();
  const std::uint64_t size = database.Size();
  if (!HasFittingSize(owner, size)) return false;
  const bool recognises = std::all_of(pages_.begin(), pages_.end(), [&](const auto& entry) {
    return Recognises(database, size, entry.first, entry.second);
  });
  if (!recognises) return false;
  if (proof == Proof::Times && IsUntouched(database, owner)) return true;
  if (const std::optional<std::uint64_t> content = header_.Content()) return ContentOf(database, owner) == *content;
  return HasItsTimes(database, owner) && HasWitnesses(database, owner);
}

// A checkpoint lets the file grow, and never shrink.
bool RedoLog::HasFittingSize(const LogOwner& owner, std::uint64_t size) const {
  if (!ApplyingHasBegun()) return size == owner.size;
  return size >= owner.size && size <= std::max(owner.size, std::uint64_t{pageCount_} * kPageSize);
}

bool RedoLog::IsUntouched(File& database, const LogOwner& owner) {
  const std::uint64_t number = file_->Identity().number;
  return !ApplyingHasBegun() && number != 0 && number == header_.LogNumber() &&
         database.Identity().number == owner.fileNumber && database.Times() == owner.times;
}

// As it was before the log's statements.
std::uint64_t RedoLog::ContentOf(File& database, const LogOwner& owner) const {
  return LogOwner::ContentSum(database, owner.size, [this](PageNumber number) {
    const LoggedPage* page = Find(number);
    return page != nullptr ? &page->before : nullptr;
  });
}

// All that is known of a file whose content was not yet read when the log's writer died.
bool RedoLog::HasItsTimes(File& database, const LogOwner& owner) {
  const bool isInPlace = file_->Identity().number == header_.LogNumber();
  if (isInPlace && database.Identity().number != owner.fileNumber) return false;
  // Under the mark, only in a log of an earlier version.
  if (ApplyingHasBegun()) return true;
  const FileTimes times = database.Times();
  if (!IsSameMoment(owner.times.written, times.written)) return false;
  // Without such a time a copy of both, which has other numbers, is taken for what it is by the one that it has.
  return owner.times.changed == 0 || (isInPlace && IsSameMoment(owner.times.changed, times.changed));
}

bool RedoLog::HasWitnesses(File& database, const LogOwner& owner) const {
  for (std::size_t i = 0; i < LogOwner::kWitnesses; ++i) {
    const PageNumber page = LogOwner::WitnessPage(i, owner.size);
    if (Find(page) == nullptr && LogOwner::WitnessSum(database, page) != owner.witnesses[i]) return false;
  }
  return true;
}

// Whether each sector of the page is as before the log's statements, or, once a checkpoint has begun, as one may have
// left it.
bool RedoLog::Recognises(File& database, std::uint64_t size, PageNumber number, const LoggedPage& page) {
  const std::uint64_t start = std::uint64_t{number} * kPageSize;
  const bool hasBegun = ApplyingHasBegun();
  if (!hasBegun && !page.before.isInDatabase) return start >= size;
  if (start + kPageSize > size && page.before.isInDatabase) return false;

  std::array<std::uint8_t, kPageSize> stored{};
  const auto there = static_cast<std::size_t>(std::min<std::uint64_t>(kPageSize, size - std::min(size, start)));
  if (there > 0) database.ReadAt(start, std::span(stored).first(there));
  const PageSums sums = PageSums::Of(stored);
  if (sums == page.before) return true;
  if (!hasBegun) return false;
  const std::vector<PageSums> images = SumsOfImages(page);
  const PageSums blank = PageSums::Of(std::array<std::uint8_t, kPageSize>{});
  for (std::size_t i = 0; i < PageSums::kSectors; ++i) {
    // A new page may be there in part; where it is not the file ends, or has zeros.
    const bool isOld = page.before.isInDatabase
                           ? sums.sectors[i] == page.before.sectors[i]
                           : sums.sectors[i] == blank.sectors[i] || (i + 1) * PageSums::kSectorSize > there;
    const auto isAsIn = [&](const PageSums& image) { return image.sectors[i] == sums.sectors[i]; };
    if (!isOld && std::none_of(images.begin(), images.end(), isAsIn)) return false;
  }
  return true;
}

std::vector<PageSums> RedoLog::SumsOfImages(const LoggedPage& page) {
  std::vector<std::uint64_t> offsets = page.olderImages;
  if (page.imageOffset != 0) offsets.push_back(page.imageOffset);
  std::vector<PageSums> sums;
  std::array<std::uint8_t, kPageSize> image{};
  for (const std::uint64_t offset : offsets) {
    file_->ReadAt(offset, image);
    sums.push_back(PageSums::Of(image));
  }
  return sums;
}

// ---------------------------------------------------------------------------------------------------------------------
// Applying
// ---------------------------------------------------------------------------------------------------------------------

// A mark that is there already is left alone: a second attempt that fails in the middle of it would leave a log that
// seems to have nothing to do with a database into which the first attempt has written. It serves, since all that was
// appended after it is flushed here too.
void RedoLog::MarkApplying(File& database) {
  if (!ApplyingHasBegun()) {
    MarkContent(database);
    header_.MarkApplying(*file_, end_);
  }
  MakeDurable();
}

// From the first page on that is written the times of the file say nothing any more.
void RedoLog::MarkContent(File& database) {
  content_.Settle();
  if (const LogHeader now = LogHeader::ReadFrom(*file_); now.IsOfSameLog(header_)) header_ = now;
  if (!header_.Content()) header_.MarkContent(*file_, ContentOf(database, header_.Owner()));
}

void RedoLog::ApplyTo(File& database) {
  // Images are made of what is read from it.
  if (IsDoubtful()) MakeDurable();
  AppendImages(database);
  MarkApplying(database);
  // New pages first: a full disk is then met before any old page is touched.
  const auto firstNew = static_cast<PageNumber>(database.Size() / kPageSize);
  std::vector<PageNumber> numbers;
  numbers.reserve(pages_.size());
  for (const auto& entry : pages_) numbers.push_back(entry.first);
  std::sort(numbers.begin(), numbers.end());
  std::rotate(numbers.begin(), std::lower_bound(numbers.begin(), numbers.end(), firstNew), numbers.end());

  std::vector<std::uint8_t> run;
  run.reserve(kChunkSize);
  // Neighbouring pages are written in one call, up to 256 KB.
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    run.resize(run.size() + kPageSize);
    file_->ReadAt(pages_.at(numbers[i]).imageOffset, std::span(run).last<kPageSize>());
    const bool goesOn = i + 1 < numbers.size() && numbers[i + 1] == numbers[i] + 1 && run.size() < kChunkSize;
    if (goesOn) continue;
    database.WriteAt((std::uint64_t{numbers[i]} + 1) * kPageSize - run.size(), run);
    run.clear();
  }
  const std::uint64_t size = std::uint64_t{pageCount_} * kPageSize;
  if (database.Size() != size) database.Truncate(size);
  database.StampNow();
  database.Sync();
  // Not flushed: where it gets lost the log is applied once more, which changes nothing.
  header_.MarkApplied(*file_);
}

void RedoLog::Reset(const LogOwner& owner) {
  flush_.Settle();
  content_.Stop();
  Forget();
  file_->Truncate(0);
  fileSize_ = 0;
  // Without this a power failure could bring old statements back that no longer belong to the database.
  flush_.Now();
  flush_.ForgetFailures();
  BeginLog(owner);
}

void RedoLog::Remove() {
  // A doubtful log may hold a statement that was refused because it could not be flushed.
  const bool mayHoldStatements = fileSize_ > kHeaderSize || IsDoubtful();
  Release();
  Forget();
  fileSystem_.Remove(path_);
  // As in Reset: old statements must not come back.
  if (mayHoldStatements) fileSystem_.SyncFolderOf(path_);
}

std::string RedoLog::SetAside(bool isAlone) {
  // A log that was set aside is never written over: each may be all that is left of an evening.
  std::string target = FreeSetAsidePath();
  Forget();
  flush_.Settle();
  content_.Stop();
  if (isAlone) {
    Release();
    fileSystem_.Rename(path_, target);
    fileSystem_.SyncFolderOf(path_);
  } else {
    // The others know the file, not only its name. The copy is durable, its name too, before the original goes.
    CopyFile(fileSystem_, *file_, target, path_);
    fileSystem_.SyncFolderOf(target);
    file_->Truncate(0);
    flush_.Now();
    fileSize_ = 0;
  }
  return target;
}

std::string RedoLog::FreeSetAsidePath() const {
  for (unsigned number = 1;; ++number) {
    std::string path = path_ + "-setaside-" + std::to_string(number);
    if (!fileSystem_.Exists(path)) return path;
  }
}

}  // namespace tavi::access
