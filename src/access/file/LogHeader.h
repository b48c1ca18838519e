#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "access/file/FileSystem.h"
#include "access/file/LogLayout.h"
#include "access/file/LogOwner.h"

namespace tavi::access {

/// The header of a log file with its marks. The Mark... functions write what they change into the file.
class LogHeader {
 public:
  LogHeader() = default;
  /// A new header, with a salt that `older` does not have.
  static LogHeader Begin(const LogHeader& older, const LogOwner& owner, std::uint64_t logNumber);
  /// What a shorter file does not have is 0.
  static LogHeader ReadFrom(File& log);
  void WriteTo(File& log) const;

  /// True when it was never written to its end, whatever marks are there: a start of ours, or nothing, and then zeros.
  [[nodiscard]] bool IsUnfinished() const;
  /// False when it is no header of this layout, or a damaged one.
  [[nodiscard]] bool IsValid() const;
  /// The version of a layout that is later than this one, of which nothing else is known; nothing for any other bytes.
  [[nodiscard]] std::optional<std::uint32_t> LaterVersion() const;
  /// Whether statements may be appended that tell what has changed in a page.
  [[nodiscard]] bool TakesDeltas() const;
  /// Whether both begin the same log; marks do not count.
  [[nodiscard]] bool IsOfSameLog(const LogHeader& other) const;

  [[nodiscard]] std::uint64_t Salt() const;
  [[nodiscard]] std::uint64_t LogNumber() const;
  [[nodiscard]] LogOwner Owner() const;

  /// The offset in the applying mark, nothing when there is none.
  [[nodiscard]] std::optional<std::uint64_t> Applying() const;
  [[nodiscard]] bool IsApplied() const;
  [[nodiscard]] bool IsDoubtful() const;
  /// The content of a large file when the applying mark was set, nothing when it was not remembered.
  [[nodiscard]] std::optional<std::uint64_t> MarkedContent() const;
  void MarkContent(File& log, std::uint64_t sum);
  void MarkApplying(File& log, std::uint64_t end);
  void MarkApplied(File& log);
  /// Does nothing in a file without a header, or where it cannot write.
  static void MarkDoubtful(File& log);

 private:
  [[nodiscard]] bool IsWhole() const;

  std::array<std::uint8_t, log_layout::kHeaderSize> bytes_{};
};

}  // namespace tavi::access
