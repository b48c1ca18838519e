#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace tavi::access::test {

/// The bytes of a file as a value that is cheap to copy: copies share what neither has changed since.
class SharedBytes {
 public:
  SharedBytes() = default;
  explicit SharedBytes(std::span<const std::uint8_t> bytes);

  [[nodiscard]] std::uint64_t Size() const { return size_; }
  /// Fills with zeros when it grows.
  void Resize(std::uint64_t size);
  /// The stretch must lie within the size.
  void Read(std::uint64_t offset, std::span<std::uint8_t> target) const;
  /// Grows when the stretch goes past the end.
  void Write(std::uint64_t offset, std::span<const std::uint8_t> source);
  [[nodiscard]] std::vector<std::uint8_t> ToVector() const;
  /// A checksum of all bytes, quick where copies of them were summed before. Copies that share bytes are summed by one
  /// thread.
  [[nodiscard]] std::uint64_t Sum() const;

 private:
  static constexpr std::size_t kChunkSize = 4096;
  using ChunkBytes = std::array<std::uint8_t, kChunkSize>;
  struct Chunk {
    ChunkBytes bytes{};
    std::optional<std::uint64_t> sum;  // of the bytes, where it was asked for
  };

  /// The bytes of a chunk that no copy shares, to be changed.
  [[nodiscard]] ChunkBytes& Own(std::size_t index);

  std::uint64_t size_ = 0;
  std::vector<std::shared_ptr<Chunk>> chunks_;  // null: all zero; past the size all bytes are zero
};

}  // namespace tavi::access::test
