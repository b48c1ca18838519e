#pragma once

#include <cstdint>
#include <random>

namespace tavi::access::test {

/// Random numbers of a seed, the same on every machine.
class Random {
 public:
  explicit Random(std::uint32_t seed) : engine_(seed) {}
  /// A number from 0 to count - 1.
  std::uint32_t Below(std::uint64_t count) { return static_cast<std::uint32_t>(engine_() % count); }
  /// Any byte.
  std::uint8_t Byte() { return static_cast<std::uint8_t>(engine_()); }

 private:
  std::mt19937 engine_;
};

}  // namespace tavi::access::test
