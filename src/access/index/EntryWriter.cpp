#include "access/index/EntryWriter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "access/file/Bytes.h"

namespace tavi::access {

namespace {

constexpr std::size_t kWordSize = sizeof(std::uint64_t);

std::size_t WordBytes(std::size_t word) {
  return std::min(kWordSize, format::index::kMaskSize - word * kWordSize);
}

}  // namespace

std::uint64_t LoadMaskWord(const Page& page, std::size_t word) {
  const auto bytes = page.Slice(format::index::kMaskOffset + word * kWordSize, WordBytes(word));
  std::uint64_t bits = 0;
  if constexpr (std::endian::native == std::endian::little) {
    if (bytes.size() == kWordSize) {
      std::memcpy(&bits, bytes.data(), kWordSize);
      return bits;
    }
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) bits |= std::uint64_t{bytes[i]} << (8U * i);
  return bits;
}

EntryMask::EntryMask(const Page& page) {
  for (std::size_t word = 0; word < kMaskWords; ++word) words_[word] = LoadMaskWord(page, word);
}

void EntryMask::Store(Page& page) const {
  std::array<std::uint8_t, kMaskWords * kWordSize> bytes{};
  for (std::size_t word = 0; word < kMaskWords; ++word) PutLittle<std::uint64_t>(bytes, word * kWordSize, words_[word]);
  page.Put(format::index::kMaskOffset, std::span(bytes).first(format::index::kMaskSize));
}

EntryMask::Words EntryMask::TakeAbove(std::size_t after) {
  Words taken{};
  const std::size_t first = (after + 1) / kBitsPerWord;
  if (first >= kMaskWords) return taken;
  std::copy(words_.begin() + static_cast<std::ptrdiff_t>(first), words_.end(),
            taken.begin() + static_cast<std::ptrdiff_t>(first));
  taken[first] &= ~std::uint64_t{0} << ((after + 1) % kBitsPerWord);
  for (std::size_t word = first; word < kMaskWords; ++word) words_[word] &= ~taken[word];
  return taken;
}

void EntryMask::MoveUp(std::size_t after, std::size_t distance) {
  const Words moved = TakeAbove(after);
  const std::size_t whole = distance / kBitsPerWord;
  const std::size_t part = distance % kBitsPerWord;
  for (std::size_t word = whole; word < kMaskWords; ++word) {
    words_[word] |= moved[word - whole] << part;
    if (part != 0 && word > whole) words_[word] |= moved[word - whole - 1] >> (kBitsPerWord - part);
  }
}

void EntryMask::MoveDown(std::size_t after, std::size_t distance) {
  const Words moved = TakeAbove(after);
  const std::size_t whole = distance / kBitsPerWord;
  const std::size_t part = distance % kBitsPerWord;
  for (std::size_t word = 0; word + whole < kMaskWords; ++word) {
    words_[word] |= moved[word + whole] >> part;
    if (part != 0 && word + whole + 1 < kMaskWords) words_[word] |= moved[word + whole + 1] << (kBitsPerWord - part);
  }
}

namespace layout = format::index;

void EntryWriter::Append(std::span<const std::uint8_t> bytes) {
  page_.Put(layout::kEntriesOffset + end_, bytes);
  end_ += bytes.size();
}

void EntryWriter::Add(std::span<const std::uint8_t> bytes) {
  Append(end_ == 0 ? bytes : bytes.subspan(prefix_));
  mask_.Set(end_);
}

void EntryWriter::Add(std::span<const std::uint8_t> bytes, PageNumber child) {
  Append(end_ == 0 ? bytes : bytes.subspan(prefix_));
  std::array<std::uint8_t, layout::kEntryChildSize> childBytes{};
  for (std::size_t i = childBytes.size(); i > 0; --i, child >>= 8U)
    childBytes[i - 1] = static_cast<std::uint8_t>(child & 0xFFU);
  Append(childBytes);
  mask_.Set(end_);
}

void EntryWriter::Finish() {
  mask_.Store(page_);
  page_.SetU16(layout::kPrefixLengthOffset, static_cast<std::uint16_t>(prefix_));
  page_.SetU16(layout::kFreeBytesOffset, static_cast<std::uint16_t>(layout::kEntriesSize - end_));
}

}  // namespace tavi::access
