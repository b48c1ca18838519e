#include "access/file/LogContent.h"

#include <algorithm>
#include <exception>

namespace tavi::access {

namespace {

// Whoever wants it to stop waits for so much at most, 4 MB.
constexpr PageNumber kPagesBetweenLooks = 1024;

}  // namespace

void LogContent::FindSoon(File& database, File& log) {
  if (hasFailed_) return;
  try {
    if (work_ == nullptr) work_ = fileSystem_.NewBackgroundWork(kDelay, [this] { Find(); });
    if (database_ == nullptr) database_ = database.OpenAgain();
    if (log_ == nullptr) log_ = log.OpenAgain();
    work_->Ask();
  } catch (const std::exception&) {
    // The statement that asks is stored, so this must not become its error.
    hasFailed_ = true;
  }
}

// Pages that have been read prove what they were when the log was begun if the file has still the times of then, and if
// no checkpoint has begun, which sets its mark before it writes. The mark stays in that log to its end.
void LogContent::Find() noexcept {
  try {
    LogHeader header = LogHeader::ReadFrom(*log_);
    if (!header.IsValid() || header.Content()) return;
    const LogOwner owner = header.Owner();
    if (database_->Times() != owner.times) return;
    const std::optional<std::uint64_t> content = Read(owner.size);
    const LogHeader now = LogHeader::ReadFrom(*log_);
    if (!content || !now.IsOfSameLog(header) || now.Applying() || database_->Times() != owner.times) return;
    header.MarkContent(*log_, *content);
  } catch (const std::exception&) {
    hasFailed_ = true;
  }
}

std::optional<std::uint64_t> LogContent::Read(std::uint64_t size) {
  const auto count = static_cast<PageNumber>(size / kPageSize);
  std::uint64_t sum = 0;
  for (PageNumber first = 0; first < count; first += kPagesBetweenLooks) {
    if (isToStop_) return std::nullopt;
    const PageNumber end = std::min(count, first + kPagesBetweenLooks);
    sum += LogOwner::ContentSumOf(*database_, first, end, [](PageNumber) { return nullptr; });
  }
  return sum;
}

void LogContent::Settle() {
  if (work_ != nullptr) work_->Settle();
}

void LogContent::Stop() {
  isToStop_ = true;
  Settle();
  isToStop_ = false;
}

void LogContent::End() {
  Stop();
  database_.reset();
  log_.reset();
  hasFailed_ = false;
}

}  // namespace tavi::access
