#include "names/SurnamePrefix.h"

#include <string_view>

namespace tavi {
namespace {

constexpr std::string_view kMac = "MAC";
constexpr std::string_view kMc = "MC";
constexpr std::string_view kSaint = "SAINT";
constexpr std::string_view kSt = "ST";
/// A rest as short as this belongs to the word: Mack, Macey, Saints.
constexpr std::size_t kShortestStem = 3;

/// True for letters that begin with "M'": no other surname begins with M and one of these.
bool BeginsWithBareM(std::string_view letters) {
  constexpr std::size_t kShortest = 5;
  return letters.size() >= kShortest && letters.front() == 'M' &&
         std::string_view("AEIOUYBCHMW").find(letters[1]) == std::string_view::npos;
}

}  // namespace

std::string WithPlainPrefix(std::string letters) {
  if (letters.starts_with(kMac) && letters.size() >= kMac.size() + kShortestStem) {
    letters.replace(0, kMac.size(), kMc);
  } else if (BeginsWithBareM(letters)) {
    letters.replace(0, 1, kMc);
  }
  // McCrae is MacRae, McKay is Mackay and McAy.
  if (letters.starts_with("MCC") || letters.starts_with("MCK")) letters.erase(kMc.size(), 1);
  if (letters.starts_with(kSaint) && letters.size() >= kSaint.size() + kShortestStem) {
    letters.replace(0, kSaint.size(), kSt);
  }
  return letters;
}

}  // namespace tavi
