#include "access/sql/expression/WindowsLatin.h"

#include <algorithm>
#include <array>

namespace tavi::access::sql {
namespace {

constexpr int kFirst = 0x80;

/// Codes 0x80 to 0x9F, where the page differs from Unicode.
constexpr std::array<char32_t, 32> kCharacters = {0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021,
                                                  0x2C6,  0x2030, 0x160,  0x2039, 0x152,  0x8D,   0x17D,  0x8F,
                                                  0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                  0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};

}  // namespace

char32_t FromWindowsLatin(int code) {
  const auto index = static_cast<std::size_t>(code - kFirst);
  return code >= kFirst && index < kCharacters.size() ? kCharacters.at(index) : static_cast<char32_t>(code);
}

int ToWindowsLatin(char32_t character) {
  constexpr char32_t kLast = 0xFF;
  const auto* found = std::find(kCharacters.begin(), kCharacters.end(), character);
  if (found != kCharacters.end()) return kFirst + static_cast<int>(found - kCharacters.begin());
  const bool isSame = character < static_cast<char32_t>(kFirst) ||
                      (character <= kLast && character >= static_cast<char32_t>(kFirst) + kCharacters.size());
  return isSame ? static_cast<int>(character) : '?';
}

}  // namespace tavi::access::sql
