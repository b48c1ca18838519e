#include "access/index/EntryWriter.h"

#include <array>

namespace tavi::access {

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
