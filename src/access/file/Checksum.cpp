#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

#include "access/file/Bytes.h"

// A sum for torn and stale writes, quick enough to read a file through for it when a log is begun: four words
// of 8 bytes are worked on side by side. Each step can be undone when the word is known, so two stretches that differ
// in one word never have the same sum; the length goes in at the start, as the last bytes, taken one by one, could pass
// for words. The sums are in files, so nothing here may change.

namespace tavi::access {

namespace {

// Odd, so that multiplying by them loses nothing; otherwise any numbers with well-mixed bits.
constexpr std::uint64_t kMultiplier = 0xD6E8FEB86659FD93;
constexpr std::uint64_t kWordMultiplier = 0x9FB21C651E98DF25;
constexpr std::uint64_t kFinisher = 0xA0761D6478BD642F;
constexpr std::size_t kWordSize = 8;
constexpr std::size_t kLaneCount = 4;

/// Little-endian on every machine, as the sums are stored.
std::uint64_t Word(const std::uint8_t* bytes) {
  if constexpr (std::endian::native == std::endian::little) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, kWordSize);
    return word;
  }
  std::uint64_t word = 0;
  for (unsigned i = 0; i < kWordSize; ++i) word |= static_cast<std::uint64_t>(bytes[i]) << (8U * i);
  return word;
}

// The rotation between the two multiplications brings the high bits, which a multiplication hardly spreads, down.
std::uint64_t Step(std::uint64_t state, std::uint64_t word) {
  return std::rotl(state + word * kWordMultiplier, 31) * kMultiplier;
}

// Brings what the last step has left in the high bits down to the others.
std::uint64_t Finish(std::uint64_t state) {
  state ^= state >> 32U;
  state *= kFinisher;
  return state ^ (state >> 29U);
}

}  // namespace

std::uint64_t Checksum(std::uint64_t seed, std::span<const std::uint8_t> bytes) {
  std::uint64_t state = seed ^ (bytes.size() * kFinisher);
  const std::uint8_t* at = bytes.data();
  std::size_t left = bytes.size();
  if (left >= kWordSize * kLaneCount) {
    // Four independent lanes keep the processor's multiplier busy.
    std::array<std::uint64_t, kLaneCount> lanes = {state, state + 1, state + 2, state + 3};
    for (; left >= kWordSize * kLaneCount; left -= kWordSize * kLaneCount, at += kWordSize * kLaneCount) {
      for (std::size_t lane = 0; lane < kLaneCount; ++lane)
        lanes[lane] = Step(lanes[lane], Word(at + lane * kWordSize));
    }
    for (const std::uint64_t lane : lanes) state = Step(state, lane);
  }
  for (; left >= kWordSize; left -= kWordSize, at += kWordSize) state = Step(state, Word(at));
  for (; left > 0; --left, ++at) state = Step(state, *at);
  return Finish(state);
}

}  // namespace tavi::access
