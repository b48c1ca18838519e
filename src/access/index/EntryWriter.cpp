#include "access/index/EntryWriter.h"

#include <algorithm>
#include <array>

#include "access/file/Bytes.h"

// The mask of an index page has a bit for each place between two bytes of the entries; a set one says that an entry
// ends there and the next one begins. It is the only thing that tells entries apart, as they carry no lengths. Here it
// is worked on 64 bits at a time: finding the entry at a place, and moving the ends behind an insertion, are a few
// steps for the 57 words of a page, whatever the number of entries.
//
// Example, the mask of a leaf with entries of 8 and 14 bytes: 00 01 40 00 ..., the bits 8 and 22 (the first entry
// begins at 0 without a bit of its own). The last bit that can be set is 3616, the end of the page.

namespace tavi::access {

namespace {

constexpr std::size_t kWordSize = sizeof(std::uint64_t);

}  // namespace

EntryMask::EntryMask(const Page& page) {
  for (std::size_t word = 0; word < kMaskWords; ++word) words_[word] = LoadMaskWord(page, word);
}

void EntryMask::Store(Page& page) const {
  std::array<std::uint8_t, kMaskWords * kWordSize> bytes{};
  for (std::size_t word = 0; word < kMaskWords; ++word) PutLittle<std::uint64_t>(bytes, word * kWordSize, words_[word]);
  page.Put(format::index::kMaskOffset, std::span(bytes).first(format::index::kMaskSize));
}

// Taken out and put back in another place, so that a bit is never met by another one that has not been moved yet. Bit
// `after` itself stays: the entry before the insertion ends there.
EntryMask::Words EntryMask::TakeAbove(std::size_t after) {
  Words taken{};
  const std::size_t first = (after + 1) / kBitsPerWord;
  // Behind the last word there is nothing to move.
  if (first >= kMaskWords) return taken;
  std::copy(words_.begin() + static_cast<std::ptrdiff_t>(first), words_.end(),
            taken.begin() + static_cast<std::ptrdiff_t>(first));
  taken[first] &= ~std::uint64_t{0} << ((after + 1) % kBitsPerWord);
  for (std::size_t word = first; word < kMaskWords; ++word) words_[word] &= ~taken[word];
  return taken;
}

// Whole words and a rest: each word gets the low bits of the one that many words before it, and the high bits of the
// one before that. A shift by all 64 bits is not defined, so a rest of 0 leaves the second part out.
void EntryMask::MoveUp(std::size_t after, std::size_t distance) {
  const Words moved = TakeAbove(after);
  const std::size_t whole = distance / kBitsPerWord;
  const std::size_t part = distance % kBitsPerWord;
  for (std::size_t word = whole; word < kMaskWords; ++word) {
    words_[word] |= moved[word - whole] << part;
    if (part != 0 && word > whole) words_[word] |= moved[word - whole - 1] >> (kBitsPerWord - part);
  }
}

// The same the other way round. The caller has cleared the ends that are in the way.
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

// Where the entries of a page end is kept here until Finish; what lay behind it on the page stays there unread.
void EntryWriter::Append(std::span<const std::uint8_t> bytes) {
  page_.Put(layout::kEntriesOffset + end_, bytes);
  end_ += bytes.size();
}

void EntryWriter::Add(std::span<const std::uint8_t> bytes) {
  Append(end_ == 0 ? bytes : bytes.subspan(prefix_));
  mask_.Set(end_);
}

void EntryWriter::Add(std::span<const std::uint8_t> bytes, PageNumber child) {
  // The child belongs to the entry: its end, and the bit, come behind it. Big-endian like everything in entries.
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
