#include "access/file/support/SharedBytes.h"

#include <algorithm>

#include "access/file/Bytes.h"

namespace tavi::access::test {

SharedBytes::SharedBytes(std::span<const std::uint8_t> bytes) {
  Write(0, bytes);
}

SharedBytes::ChunkBytes& SharedBytes::Own(std::size_t index) {
  std::shared_ptr<Chunk>& chunk = chunks_[index];
  if (chunk == nullptr) {
    chunk = std::make_shared<Chunk>();
  } else if (chunk.use_count() > 1) {
    chunk = std::make_shared<Chunk>(*chunk);
  }
  chunk->sum.reset();
  return chunk->bytes;
}

void SharedBytes::Resize(std::uint64_t size) {
  chunks_.resize(static_cast<std::size_t>((size + kChunkSize - 1) / kChunkSize));
  const auto rest = static_cast<std::size_t>(size % kChunkSize);
  if (size < size_ && rest != 0 && chunks_.back() != nullptr) {
    ChunkBytes& last = Own(chunks_.size() - 1);
    std::fill(last.begin() + static_cast<std::ptrdiff_t>(rest), last.end(), std::uint8_t{0});
  }
  size_ = size;
}

void SharedBytes::Read(std::uint64_t offset, std::span<std::uint8_t> target) const {
  while (!target.empty()) {
    const auto within = static_cast<std::size_t>(offset % kChunkSize);
    const std::size_t count = std::min(target.size(), kChunkSize - within);
    const std::shared_ptr<Chunk>& chunk = chunks_.at(static_cast<std::size_t>(offset / kChunkSize));
    if (chunk == nullptr) {
      std::fill_n(target.begin(), count, std::uint8_t{0});
    } else {
      std::copy_n(chunk->bytes.begin() + static_cast<std::ptrdiff_t>(within), count, target.begin());
    }
    offset += count;
    target = target.subspan(count);
  }
}

void SharedBytes::Write(std::uint64_t offset, std::span<const std::uint8_t> source) {
  if (offset + source.size() > size_) Resize(offset + source.size());
  while (!source.empty()) {
    const auto within = static_cast<std::size_t>(offset % kChunkSize);
    const std::size_t count = std::min(source.size(), kChunkSize - within);
    ChunkBytes& chunk = Own(static_cast<std::size_t>(offset / kChunkSize));
    std::copy_n(source.begin(), count, chunk.begin() + static_cast<std::ptrdiff_t>(within));
    offset += count;
    source = source.subspan(count);
  }
}

std::vector<std::uint8_t> SharedBytes::ToVector() const {
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size_));
  Read(0, bytes);
  return bytes;
}

std::uint64_t SharedBytes::Sum() const {
  static const std::uint64_t zeros = Checksum(0, ChunkBytes{});
  std::uint64_t sum = size_;
  for (const std::shared_ptr<Chunk>& chunk : chunks_) {
    if (chunk != nullptr && !chunk->sum) chunk->sum = Checksum(0, chunk->bytes);
    sum = Checksum(sum ^ (chunk == nullptr ? zeros : *chunk->sum), {});
  }
  return sum;
}

}  // namespace tavi::access::test
