// The redo log beside a file. The first byte says how to read the rest: even: the bytes of the log; odd: statements
// that are written as a log whose checksums are right, unless the input wants one wrong, so that what they guard is
// reached.
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "access/file/Bytes.h"
#include "access/file/LogHeader.h"
#include "access/file/LogStatement.h"
#include "access/provider/support/Evening.h"
#include "access/provider/support/FileUse.h"
#include "fuzz/ByteSource.h"
#include "fuzz/Target.h"

namespace {

using namespace tavi::access;
using namespace tavi::access::test;
using tavi::fuzz::ByteSource;
using LogBytes = std::vector<std::uint8_t>;

constexpr std::uint64_t kMostReads = 100000;
constexpr std::size_t kHeaderSize = 0x180;
constexpr std::size_t kHeaderSumOffset = 0x140;
constexpr std::size_t kMarkOffset = 0x148;
constexpr std::size_t kMostStatements = 8;

void Append(LogBytes& log, std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) log.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

/// Writes the log that an input describes; layout in LogLayout.h.
class LogWriter {
 public:
  LogWriter(const LogBytes& database, const LogOwner& owner, ByteSource source)
      : database_(database), owner_(owner), source_(source) {}

  LogBytes Write() {
    WriteHeader();
    for (std::size_t i = 0; i < kMostStatements && !source_.IsAtEnd(); ++i) WriteStatement();
    if (wantsMark_) WriteMark();
    return std::move(log_);
  }

 private:
  [[nodiscard]] std::size_t Pages() const { return database_.size() / kPageSize; }
  [[nodiscard]] std::span<const std::uint8_t> Stored(std::size_t page) const {
    return std::span(database_).subspan(page * kPageSize, kPageSize);
  }

  void WriteHeader() {
    const std::uint8_t flags = source_.Byte();
    wantsMark_ = (flags & 1U) != 0;
    salt_ = 1U + source_.Byte();
    for (const char letter : std::string("TAVIREDO")) Append(log_, static_cast<std::uint8_t>(letter), 1);
    Append(log_, (flags & 2U) != 0 ? source_.Byte() : 3U, 4);
    Append(log_, kPageSize, 4);
    Append(log_, salt_, 8);
    Append(log_, database_.size() + ((flags & 4U) != 0 ? source_.Byte() : 0U), 8);
    // Known by its content, as a file that was copied.
    Append(log_, 0, 8);
    Append(log_, 0, 8);
    Append(log_, 0, 8);
    Append(log_, owner_.contentSum, 8);
    log_.resize(kHeaderSumOffset);
    Append(log_, Checksum(0, log_), 8);
    log_.resize(kHeaderSize);
    chain_ = salt_;
  }

  void WriteStatement() {
    const std::uint8_t flags = source_.Byte();
    if ((flags & 4U) != 0) {
      WriteDeltas(flags);
    } else {
      WriteWholePages(flags);
    }
  }

  // The first bytes of a statement.
  void WriteStart(std::uint32_t magic, std::uint8_t flags, std::size_t count, std::size_t recordsSize) {
    Append(log_, magic, 4);
    Append(log_, (flags & 0x80U) != 0 ? source_.Word() : count, 4);
    Append(log_, (flags & 0x40U) != 0 ? source_.Word() * 0x101U : Pages() + 2, 4);
    Append(log_, recordsSize, 4);
    Append(log_, (flags & 0x20U) != 0 ? source_.Byte() : chain_, 8);
    Append(log_, 0, 8);
  }

  void WriteWholePages(std::uint8_t flags) {
    const std::size_t start = log_.size();
    const std::size_t count = 1 + flags % 3;
    WriteStart(0x544D5453, flags, count, 0);
    std::uint64_t checksum = Checksum(chain_, std::span(log_).subspan(start));
    std::vector<std::size_t> numbers;
    const std::size_t directory = log_.size();
    for (std::size_t i = 0; i < count; ++i) numbers.push_back(WriteEntry((flags & 0x10U) != 0));
    checksum = Checksum(checksum, std::span(log_).subspan(directory));
    for (const std::size_t number : numbers) {
      const std::size_t image = log_.size();
      WriteImage(number);
      checksum = Checksum(checksum, std::span(log_).subspan(image));
      pages_[number] = {LogBytes(log_.end() - kPageSize, log_.end()), 0, true};
    }
    Append(log_, checksum + ((flags & 0x08U) != 0 ? 1U : 0U), 8);
    chain_ = checksum;
  }

  void WriteDeltas(std::uint8_t flags) {
    const std::size_t start = log_.size();
    std::vector<LogBytes> records;
    std::size_t size = 0;
    std::size_t number = source_.Word() % (Pages() + 2);
    for (std::size_t count = 1 + flags % 3; count > 0; --count) {
      records.push_back(MakeRecord(number, start + 0x20 + size));
      size += records.back().size();
      number += 1 + source_.Byte() % 4U;
    }
    WriteStart(0x41544C44, flags, records.size(), size + ((flags & 0x10U) != 0 ? source_.Byte() : 0U));
    std::uint64_t checksum = Checksum(chain_, std::span(log_).subspan(start));
    for (const LogBytes& record : records) {
      checksum = Checksum(checksum, record);
      log_.insert(log_.end(), record.begin(), record.end());
    }
    Append(log_, checksum + ((flags & 0x08U) != 0 ? 1U : 0U), 8);
    chain_ = checksum;
  }

  // What is to lie at an offset of the log.
  LogBytes MakeRecord(std::size_t number, std::size_t offset) {
    const bool isInDatabase = number < Pages();
    const auto [place, isNew] = pages_.try_emplace(number);
    LoggedBytes& page = place->second;
    if (isNew)
      page.stored = isInDatabase ? LogBytes(Stored(number).begin(), Stored(number).end()) : LogBytes(kPageSize);
    const bool isFirst = !page.isLogged;
    const std::uint8_t wrong = source_.Byte();
    const LogBytes delta = MakeDelta();
    if (IsDelta(delta)) ApplyDelta(delta, std::span(page.stored).first<kPageSize>());
    LogBytes record;
    Append(record, number, 4);
    Append(record, SumOfPage(std::span(page.stored).first<kPageSize>()) + (wrong % 16 == 1 ? 1U : 0U), 4);
    Append(record, wrong % 16 == 2 ? source_.Word() : page.lastDelta, 8);
    Append(record, delta.size() + (wrong % 16 == 3 ? source_.Byte() : 0U), 2);
    Append(record, (isFirst ? 1U : 0U) | (isFirst && isInDatabase ? 2U : 0U) | (wrong % 16 == 4 ? 4U : 0U), 2);
    if (isFirst && isInDatabase) {
      for (const std::uint32_t sum : PageSums::Of(Stored(number)).sectors) Append(record, sum, 4);
    }
    record.insert(record.end(), delta.begin(), delta.end());
    page.lastDelta = offset;
    page.isLogged = true;
    return record;
  }

  LogBytes MakeDelta() {
    LogBytes delta;
    for (std::uint8_t pieces = source_.Byte() % 4; pieces > 0; --pieces) {
      const std::size_t length = source_.Byte();
      const bool isMoved = source_.Byte() % 2 != 0;
      Append(delta, source_.Word() % (kPageSize + 8), 2);
      Append(delta, length | (isMoved ? 0x8000U : 0U), 2);
      if (isMoved) Append(delta, source_.Word() % (kPageSize + 8), 2);
      for (std::size_t i = 0; !isMoved && i < length; ++i) delta.push_back(source_.Byte());
    }
    return delta;
  }

  std::size_t WriteEntry(bool isWrong) {
    const std::size_t number = source_.Word() % (Pages() + 4);
    const PageSums before = number < Pages() ? PageSums::Of(Stored(number)) : PageSums{};
    Append(log_, number, 4);
    Append(log_, before.isInDatabase ? 1U : 0U, 4);
    for (const std::uint32_t sum : before.sectors) Append(log_, sum + (isWrong ? 1U : 0U), 4);
    return number;
  }

  // The page as the database has it, with a few bytes of the input.
  void WriteImage(std::size_t number) {
    LogBytes image(kPageSize);
    if (number < Pages()) image.assign(Stored(number).begin(), Stored(number).end());
    for (std::uint8_t patches = source_.Byte() % 8; patches > 0; --patches) {
      const std::size_t place = source_.Word() % kPageSize;
      image[place] = source_.Byte();
    }
    log_.insert(log_.end(), image.begin(), image.end());
  }

  void WriteMark() {
    LogBytes mark;
    Append(mark, log_.size(), 8);
    Append(mark, Checksum(salt_, mark), 8);
    std::copy(mark.begin(), mark.end(), log_.begin() + kMarkOffset);
  }

  struct LoggedBytes {
    LogBytes stored;
    std::size_t lastDelta = 0;
    bool isLogged = false;
  };

  const LogBytes& database_;
  const LogOwner& owner_;
  ByteSource source_;
  LogBytes log_;
  bool wantsMark_ = false;
  std::uint64_t salt_ = 0;
  std::uint64_t chain_ = 0;
  std::map<std::size_t, LoggedBytes> pages_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::shared_ptr<const MemoryFileSystem> file = NewEveningFile();
  static const LogBytes database = file->Contents(kEveningPath);
  static const LogOwner owner =
      LogOwner::Of(*file->AfterCrash(CrashKind::Kept, 0)->Open(kEveningPath, FileSystem::OpenMode::ReadOnly));
  ByteSource source({data, size});
  const bool isWritten = source.Byte() % 2 != 0;
  const LogBytes log =
      isWritten ? LogWriter(database, owner, source).Write() : LogBytes(source.Rest().begin(), source.Rest().end());
  const auto memory = file->AfterCrash(CrashKind::Kept, 0);
  memory->SetContents(std::string(kEveningPath) + ".redo", log);
  UseFile(memory, kMostReads);
  return 0;
}
