#include "access/file/support/Mutation.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "access/file/Bytes.h"
#include "access/file/Page.h"

namespace tavi::access::test {

namespace {

using Bytes = std::vector<std::uint8_t>;

std::size_t PageStart(const Bytes& bytes, Random& random) {
  return std::size_t{random.Below(std::max<std::size_t>(1, bytes.size() / kPageSize))} * kPageSize;
}

// Half of them among the first bytes of a page, a quarter near its end, where rows lie.
std::size_t Place(const Bytes& bytes, Random& random) {
  const std::size_t page = PageStart(bytes, random);
  const std::uint32_t part = random.Below(4);
  const std::size_t within = part < 2    ? random.Below(80)
                             : part == 2 ? kPageSize - 1 - random.Below(400)
                                         : random.Below(kPageSize);
  return std::min(page + within, bytes.size() - 1);
}

std::string At(std::size_t place) {
  return " at page " + std::to_string(place / kPageSize) + ", byte " + std::to_string(place % kPageSize);
}

std::string ChangeBytes(Bytes& bytes, Random& random) {
  std::string text = "bytes";
  for (std::uint32_t count = 1 + random.Below(4); count > 0; --count) {
    const std::size_t place = Place(bytes, random);
    bytes[place] =
        random.Below(2) == 0 ? random.Byte() : static_cast<std::uint8_t>(bytes[place] ^ (1U << random.Below(8)));
    text += At(place);
  }
  return text;
}

std::string OverwriteStretch(Bytes& bytes, Random& random) {
  constexpr std::array<std::uint8_t, 4> kFillers = {0x00, 0xFF, 0x5A, 0x01};
  const std::size_t place = Place(bytes, random);
  const std::size_t count = std::min<std::size_t>(1 + random.Below(40), bytes.size() - place);
  std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(place), count, kFillers[random.Below(kFillers.size())]);
  return "a stretch of " + std::to_string(count) + At(place);
}

std::string PutNumber(Bytes& bytes, Random& random) {
  const std::array<std::uint32_t, 8> numbers = {
      0, 1, 0x7FFFFFFF, 0xFFFFFFFF, 0x80000000, 0x00FFFFFF, 0xFFFFFF00, random.Below(bytes.size() / kPageSize)};
  const std::uint32_t number = numbers[random.Below(numbers.size())];
  const std::size_t place = std::min(Place(bytes, random), bytes.size() - sizeof(number));
  PutLittle<std::uint32_t>(bytes, place, number);
  return "the number " + std::to_string(number) + At(place);
}

std::string ExchangePages(Bytes& bytes, Random& random) {
  const std::size_t one = PageStart(bytes, random);
  const std::size_t two = PageStart(bytes, random);
  const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(one);
  const auto second = bytes.begin() + static_cast<std::ptrdiff_t>(two);
  const bool isCopy = random.Below(2) == 0;
  if (isCopy) {
    std::copy_n(Bytes(first, first + kPageSize).begin(), kPageSize, second);
  } else if (one != two) {
    std::swap_ranges(first, first + kPageSize, second);
  }
  return (isCopy ? "a copy of" : "exchanged") + At(one) + At(two);
}

std::string ChangeLength(Bytes& bytes, Random& random) {
  const std::size_t size = random.Below(2) == 0 ? random.Below(bytes.size() + 1) : PageStart(bytes, random);
  if (random.Below(4) == 0) {
    const Bytes more(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    bytes.insert(bytes.end(), more.begin(), more.end());
  } else {
    bytes.resize(size);
  }
  return "length " + std::to_string(bytes.size());
}

}  // namespace

std::string DamageFile(std::vector<std::uint8_t>& bytes, Random& random) {
  if (bytes.size() < kPageSize) return "nothing";
  const std::uint32_t choice = random.Below(16);
  if (choice < 5) return ChangeBytes(bytes, random);
  if (choice < 8) return OverwriteStretch(bytes, random);
  if (choice < 12) return PutNumber(bytes, random);
  if (choice < 15) return ExchangePages(bytes, random);
  return ChangeLength(bytes, random);
}

void Mutate(std::vector<std::uint8_t>& bytes, std::span<const std::uint8_t> other, Random& random) {
  for (std::uint32_t changes = 1 + random.Below(6); changes > 0; --changes) {
    const auto place = static_cast<std::ptrdiff_t>(random.Below(bytes.size() + 1));
    const auto rest = static_cast<std::uint64_t>(static_cast<std::ptrdiff_t>(bytes.size()) - place);
    const auto length = static_cast<std::ptrdiff_t>(random.Below(std::min<std::uint64_t>(rest, 64) + 1));
    switch (random.Below(5)) {
      case 0:
        if (rest > 0) bytes[static_cast<std::size_t>(place)] ^= static_cast<std::uint8_t>(1U << random.Below(8));
        break;
      case 1:
        if (rest > 0) bytes[static_cast<std::size_t>(place)] = random.Byte();
        break;
      case 2:
        bytes.erase(bytes.begin() + place, bytes.begin() + place + length);
        break;
      case 3: {
        const Bytes piece(bytes.begin() + place, bytes.begin() + place + length);
        bytes.insert(bytes.begin() + place, piece.begin(), piece.end());
        break;
      }
      default: {
        if (other.empty()) break;
        const std::size_t start = random.Below(other.size());
        const auto piece = other.subspan(start, 1 + random.Below(std::min<std::size_t>(other.size() - start, 64)));
        bytes.insert(bytes.begin() + place, piece.begin(), piece.end());
      }
    }
  }
}

}  // namespace tavi::access::test
