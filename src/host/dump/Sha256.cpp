#include <algorithm>
#include <bit>
#include <vector>

#include "host/dump/DatabaseDump.h"

// The digest in the plain form of its standard: the bytes in blocks of 64, each spread to 64 words (Schedule) and mixed
// into the state in 64 rounds (AddBlock). The last block has a one bit behind the bytes, zeros, and the length in bits;
// where these do not fit, one more block follows.
namespace tavi::host {

namespace {

using State = std::array<std::uint32_t, 8>;

constexpr std::size_t kBlockSize = 64;
constexpr std::size_t kRounds = 64;
constexpr std::size_t kLengthSize = 8;
constexpr std::uint8_t kEndMark = 0x80;

// The first 32 bits of the fractions of the square roots of the first 8 primes.
constexpr State kStart = {0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                          0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};

// Of the cube roots of the first 64 primes.
constexpr std::array<std::uint32_t, kRounds> kConstants = {
    0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B, 0x59F111F1, 0x923F82A4, 0xAB1C5ED5,
    0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3, 0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174,
    0xE49B69C1, 0xEFBE4786, 0x0FC19DC6, 0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA,
    0x983E5152, 0xA831C66D, 0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967,
    0x27B70A85, 0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
    0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585, 0x106AA070,
    0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A, 0x5B9CCA4F, 0x682E6FF3,
    0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA, 0xA4506CEB, 0xBEF9A3F7, 0xC67178F2};

/// The block's own 16 words, high byte first, and 48 more that are made of the earlier ones.
std::array<std::uint32_t, kRounds> Schedule(std::span<const std::uint8_t> block) {
  std::array<std::uint32_t, kRounds> words{};
  for (std::size_t i = 0; i < kBlockSize; ++i) words[i / 4] = (words[i / 4] << 8U) | block[i];
  for (std::size_t i = 16; i < kRounds; ++i) {
    const std::uint32_t early = words[i - 15];
    const std::uint32_t late = words[i - 2];
    const std::uint32_t first = std::rotr(early, 7) ^ std::rotr(early, 18) ^ (early >> 3U);
    const std::uint32_t second = std::rotr(late, 17) ^ std::rotr(late, 19) ^ (late >> 10U);
    words[i] = words[i - 16] + first + words[i - 7] + second;
  }
  return words;
}

void AddBlock(State& state, std::span<const std::uint8_t> block) {
  const auto words = Schedule(block);
  auto [a, b, c, d, e, f, g, h] = state;
  for (std::size_t i = 0; i < kRounds; ++i) {
    const std::uint32_t upper = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
    const std::uint32_t first = h + upper + ((e & f) ^ (~e & g)) + kConstants[i] + words[i];
    const std::uint32_t lower = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
    const std::uint32_t second = lower + ((a & b) ^ (a & c) ^ (b & c));
    h = g;
    g = f;
    f = e;
    e = d + first;
    d = c;
    c = b;
    b = a;
    a = first + second;
  }
  const State added = {a, b, c, d, e, f, g, h};
  for (std::size_t i = 0; i < state.size(); ++i) state[i] += added[i];
}

}  // namespace

std::array<std::uint8_t, 32> Sha256(std::span<const std::uint8_t> bytes) {
  State state = kStart;
  std::span<const std::uint8_t> rest = bytes;
  for (; rest.size() >= kBlockSize; rest = rest.subspan(kBlockSize)) AddBlock(state, rest.first(kBlockSize));

  std::vector<std::uint8_t> tail(rest.begin(), rest.end());
  tail.push_back(kEndMark);
  // The end mark is counted already.
  const bool fits = tail.size() + kLengthSize <= kBlockSize;
  tail.resize((fits ? kBlockSize : 2 * kBlockSize) - kLengthSize);
  // High byte first, in the last eight bytes of the last block.
  const std::uint64_t bits = std::uint64_t{bytes.size()} * 8;
  for (std::size_t i = kLengthSize; i-- > 0;) tail.push_back(static_cast<std::uint8_t>(bits >> (8 * i)));
  for (std::size_t i = 0; i < tail.size(); i += kBlockSize) AddBlock(state, std::span(tail).subspan(i, kBlockSize));

  std::array<std::uint8_t, 32> digest{};
  for (std::size_t i = 0; i < digest.size(); ++i) {
    // Each word of the state, its high byte first.
    digest[i] = static_cast<std::uint8_t>(state[i / 4] >> (24 - 8 * (i % 4)));
  }
  return digest;
}

}  // namespace tavi::host
