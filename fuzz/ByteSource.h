#pragma once

#include <cstdint>
#include <span>

namespace tavi::fuzz {

/// Numbers out of the bytes of an input; zeros when it has ended.
class ByteSource {
 public:
  explicit ByteSource(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  [[nodiscard]] bool IsAtEnd() const { return bytes_.empty(); }
  std::uint8_t Byte() {
    if (bytes_.empty()) return 0;
    const std::uint8_t byte = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return byte;
  }
  std::uint16_t Word() {
    const std::uint8_t low = Byte();
    return static_cast<std::uint16_t>(low | (Byte() << 8U));
  }
  [[nodiscard]] std::span<const std::uint8_t> Rest() const { return bytes_; }

 private:
  std::span<const std::uint8_t> bytes_;
};

/// Overwrites stretches of `target` as the input says, until it has ended: a page's number [1], a place in the page
/// [2], a count [1], and the bytes.
inline void ApplyPatches(ByteSource& source, std::span<std::uint8_t> target, std::size_t pageSize) {
  constexpr std::size_t kMaximumCount = 64;
  const std::size_t pages = target.size() / pageSize;
  while (!source.IsAtEnd()) {
    const std::size_t page = source.Byte() % pages;
    const std::size_t place = page * pageSize + source.Word() % pageSize;
    std::size_t count = source.Byte() % kMaximumCount;
    for (std::size_t at = place; count > 0 && at < target.size(); ++at, --count) target[at] = source.Byte();
  }
}

}  // namespace tavi::fuzz
