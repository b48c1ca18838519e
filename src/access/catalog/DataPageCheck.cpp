// The row directory of a data page:
//
//   0E  row 0: F1 0F   begins at 0FF1, ends at the end of the page (1000): 15 bytes
//   10  row 1: F1 CF   deleted (C000), begins at 0FF1, ends where row 0 begins: no bytes
//   12  row 2: E2 0F   begins at 0FE2, ends at 0FF1: 15 bytes
//       free bytes: 0FE2 - 0E - 3 x 2 = 0FCE
//
// Rows follow one another downwards without gaps, so each entry bounds the next; from the first that does not fit on,
// nothing can be said about lengths, and the page is given up.
#include "access/catalog/TableCheck.h"
#include "access/file/Format.h"

namespace tavi::access {

namespace {

namespace data_layout = format::data;

}  // namespace

std::vector<RowEntry> CheckDataPage(const Page& page, std::uint32_t owner, const std::string& where,
                                    CheckReport& report) {
  const std::uint8_t type = page.U8(format::kPageTypeOffset);
  if (type != format::page_type::kData) {
    report.Add(where + " has type " + std::to_string(type) + " instead of that of a data page.");
    return {};
  }
  // Of a page that belongs to somebody else the rows must not be taken for this table's.
  if (page.U32(data_layout::kOwnerOffset) != owner) {
    report.Add(where + " names the owner " + std::to_string(page.U32(data_layout::kOwnerOffset)) + " instead of " +
               std::to_string(owner) + ".");
    return {};
  }
  const std::size_t count = page.U16(data_layout::kRowCountOffset);
  const std::size_t directoryEnd = data_layout::kRowDirectoryOffset + count * data_layout::kRowEntrySize;
  if (count > data_layout::kMaximumRowCount) {
    report.Add(where + " has " + std::to_string(count) + " rows; 255 are the most.");
    return {};
  }
  std::vector<RowEntry> entries;
  std::size_t end = kPageSize;
  for (std::size_t row = 0; row < count; ++row) {
    const std::uint16_t stored = page.U16(data_layout::kRowDirectoryOffset + row * data_layout::kRowEntrySize);
    const std::size_t offset = stored & data_layout::kRowOffsetMask;
    // Bit 2000 means nothing; its row may be sound all the same.
    if ((stored & ~(data_layout::kRowOffsetMask | data_layout::kRowFlagsMask)) != 0)
      report.Add(where + ": row " + std::to_string(row) + " has an unknown flag in its directory entry.");
    if (offset > end || offset < directoryEnd) {
      report.Add(where + ": row " + std::to_string(row) + " begins at byte " + std::to_string(offset) +
                 ", which is not between " + std::to_string(directoryEnd) + " and " + std::to_string(end) + ".");
      return {};
    }
    entries.push_back({offset, end - offset, static_cast<std::uint16_t>(stored & data_layout::kRowFlagsMask)});
    end = offset;
  }
  const std::size_t freeBytes = page.U16(data_layout::kFreeBytesOffset);
  if (freeBytes != end - directoryEnd)
    report.Add(where + " counts " + std::to_string(freeBytes) + " free bytes; there are " +
               std::to_string(end - directoryEnd) + ".");
  return entries;
}

}  // namespace tavi::access
