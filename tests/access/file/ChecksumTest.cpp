#include <gtest/gtest.h>
#include <set>
#include <vector>

#include "access/file/Bytes.h"

namespace tavi::access {
namespace {

TEST(Checksum, EveryBitOfAPageCounts) {
  std::vector<std::uint8_t> page(4096);
  for (std::size_t i = 0; i < page.size(); ++i) page[i] = static_cast<std::uint8_t>(i * 7);
  const std::uint64_t whole = Checksum(0, page);
  std::set<std::uint64_t> seen = {whole};
  for (std::size_t bit = 0; bit < page.size() * 8; ++bit) {
    page[bit / 8] = static_cast<std::uint8_t>(page[bit / 8] ^ (1U << (bit % 8)));
    EXPECT_TRUE(seen.insert(Checksum(0, page)).second) << "bit " << bit;
    page[bit / 8] = static_cast<std::uint8_t>(page[bit / 8] ^ (1U << (bit % 8)));
  }
}

TEST(Checksum, SeedAndLengthCount) {
  const std::vector<std::uint8_t> zeros(64);
  std::set<std::uint64_t> seen;
  for (std::size_t length = 0; length <= zeros.size(); ++length) {
    EXPECT_TRUE(seen.insert(Checksum(1, std::span(zeros).first(length))).second) << length;
    EXPECT_TRUE(seen.insert(Checksum(2, std::span(zeros).first(length))).second) << length;
  }
}

TEST(Checksum, ExchangedWordsAreNoticed) {
  std::vector<std::uint8_t> bytes(64);
  bytes[0] = 1;
  bytes[8] = 2;
  const std::uint64_t before = Checksum(0, bytes);
  std::swap(bytes[0], bytes[8]);
  EXPECT_NE(Checksum(0, bytes), before);
  std::swap(bytes[0], bytes[8]);
  std::swap(bytes[0], bytes[32]);
  EXPECT_NE(Checksum(0, bytes), before);
}

TEST(Checksum, IsTheSameOnEveryMachine) {
  // Logs may be written by one machine and recovered by another.
  std::vector<std::uint8_t> bytes(45);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i + 1);
  EXPECT_EQ(Checksum(0x0123456789ABCDEF, bytes), 0x72D4679570EDACCBu);
}

}  // namespace
}  // namespace tavi::access
