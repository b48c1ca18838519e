#pragma once

#include <cstddef>
#include <cstdint>

namespace tavi::access::test {

/// The seed of a test that makes its own story: the environment variable TAVI_SEED, else the one given. The same seed
/// tells the same story.
[[nodiscard]] std::uint32_t SeedOr(std::uint32_t usual);
/// How much such a test does: the usual amount (under the sanitizers a quarter of it) times the environment variable
/// TAVI_LENGTH, a whole number from 1.
[[nodiscard]] std::size_t Lengthened(std::size_t usual);

}  // namespace tavi::access::test
