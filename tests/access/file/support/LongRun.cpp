#include "access/file/support/LongRun.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace tavi::access::test {

namespace {

// Under the sanitizers everything takes several times as long.
#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t kShare = 4;
#else
constexpr std::size_t kShare = 1;
#endif

unsigned long NumberFromEnvironment(const char* name, unsigned long otherwise) {
  const char* text = std::getenv(name);
  return text == nullptr || *text == '\0' ? otherwise : std::stoul(text);
}

std::size_t Length() {
  return std::max(1UL, NumberFromEnvironment("TAVI_LENGTH", 1));
}

}  // namespace

std::uint32_t SeedOr(std::uint32_t usual) {
  return static_cast<std::uint32_t>(NumberFromEnvironment("TAVI_SEED", usual));
}

std::size_t Lengthened(std::size_t usual) {
  return usual / kShare * Length();
}

}  // namespace tavi::access::test
