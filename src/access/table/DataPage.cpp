#include "access/table/DataPage.h"

#include <algorithm>
#include <string>

#include "access/file/EngineError.h"
#include "access/file/Format.h"

// Rows lie at the end of the page, back to back, each ending where the one before it in the directory begins; so the
// directory alone says where everything is, and a row that changes its length moves all rows below it (those with
// greater numbers). Row numbers are names that indexes and other rows hold: entries of the directory are never taken
// out, and a deleted row keeps its entry, without bytes.
//
// Free bytes are what lies between the directory and the lowest row, exactly, as Access counts them. Bytes of deleted
// rows do not count until they are reclaimed. Rows that are deleted here give theirs back at once; other programs leave
// them, and they are reclaimed when a row needs the room. The cost of a change is one move of at most a page.

namespace tavi::access {

namespace {

namespace data = format::data;

// A page with less room is not offered, however short its rows are: it would be looked at again and again for a few
// more.
constexpr std::size_t kLeastUsefulRoom = 60;

}  // namespace

const DataPageLayout& Jet4DataPageLayout() {
  static constexpr DataPageLayout kLayout = {kPageSize, data::kRowCountOffset, data::kRowDirectoryOffset};
  return kLayout;
}

const DataPageLayout& DataPageLayoutOf(const Pager& pager) {
  static constexpr DataPageLayout kJet3Layout = {format::jet3::kPageSize, format::jet3::data::kRowCountOffset,
                                                 format::jet3::data::kRowDirectoryOffset};
  return pager.IsJet3() ? kJet3Layout : Jet4DataPageLayout();
}

bool RowEntry::IsDeleted() const {
  return flags == data::kRowDeleted;
}

bool RowEntry::IsMoved() const {
  return flags == data::kRowMoved;
}

bool RowEntry::IsMovedTarget() const {
  return flags == data::kRowMovedTarget;
}

// ---------------------------------------------------------------------------------------------------------------------
// Reading
// ---------------------------------------------------------------------------------------------------------------------

DataPageReader::DataPageReader(const Page& page, const DataPageLayout& layout)
    : page_(&page), layout_(&layout), rowCount_(page.U16(layout.rowCountOffset)) {
  if (page.U8(format::kPageTypeOffset) != format::page_type::kData) {
    RaiseDamage("page " + std::to_string(page.Number()) + " has type " +
                std::to_string(page.U8(format::kPageTypeOffset)) + " instead of that of a data page.");
  }
  if (rowCount_ > data::kMaximumRowCount) {
    RaiseDamage("page " + std::to_string(page.Number()) + " is said to have " + std::to_string(rowCount_) + " rows.");
  }
}

bool DataPageReader::IsOwnedBy(const Page& page, std::uint32_t owner) {
  return page.U8(format::kPageTypeOffset) == format::page_type::kData && page.U32(data::kOwnerOffset) == owner;
}

std::uint16_t DataPageReader::StoredEntry(std::size_t row) const {
  return page_->U16(layout_->rowDirectoryOffset + row * data::kRowEntrySize);
}

RowEntry DataPageReader::Entry(std::size_t row) const {
  const std::uint16_t stored = StoredEntry(row);
  // 13 bits, as a deleted row 0 lies at 4096, the end of the page.
  const std::size_t offset = stored & data::kRowOffsetMask;
  const std::size_t end = row == 0 ? layout_->pageSize : StoredEntry(row - 1) & std::size_t{data::kRowOffsetMask};
  const std::size_t directoryEnd = layout_->rowDirectoryOffset + rowCount_ * data::kRowEntrySize;
  // Bytes that lie in the directory, past the page or in the row before are nobody's row. Without this a row could be
  // read twice, or written over its own directory.
  if (offset > end || end > layout_->pageSize || offset < directoryEnd) {
    RaiseDamage("row " + std::to_string(row) + " of page " + std::to_string(page_->Number()) + " lies at bytes " +
                std::to_string(offset) + " to " + std::to_string(end) + ", which is no place for a row.");
  }
  return {offset, end - offset, static_cast<std::uint16_t>(stored & data::kRowFlagsMask)};
}

std::span<const std::uint8_t> DataPageReader::Bytes(const RowEntry& entry) const {
  return page_->Slice(entry.offset, entry.length);
}

// ---------------------------------------------------------------------------------------------------------------------
// Changing
// ---------------------------------------------------------------------------------------------------------------------

// All entries are looked at before the first change, so that damage is met while the page is as it was.
DataPageEditor::DataPageEditor(Page& page) : page_(&page) {
  const DataPageReader reader(page, Jet4DataPageLayout());
  for (std::size_t row = 0; row < reader.RowCount(); ++row) static_cast<void>(reader.Entry(row));
}

void DataPageEditor::Format(Page& page, std::uint32_t owner) {
  page.SetU8(format::kPageTypeOffset, format::page_type::kData);
  page.SetU8(format::kPageMarkOffset, format::kPageMark);
  page.SetU32(data::kOwnerOffset, owner);
  page.SetU16(data::kFreeBytesOffset, static_cast<std::uint16_t>(data::kEmptyFreeBytes));
}

RowEntry DataPageEditor::Entry(std::size_t row) const {
  return DataPageReader(*page_, Jet4DataPageLayout()).Entry(row);
}

std::size_t DataPageEditor::RowCount() const {
  return page_->U16(data::kRowCountOffset);
}

// Offsets never grow from one row to the next, so the last row is the lowest.
std::size_t DataPageEditor::LowestOffset() const {
  const std::size_t count = RowCount();
  return count == 0 ? kPageSize : Entry(count - 1).offset;
}

std::size_t DataPageEditor::FreeBytes() const {
  return LowestOffset() - data::kRowDirectoryOffset - RowCount() * data::kRowEntrySize;
}

std::size_t DataPageEditor::ReclaimableBytes() const {
  std::size_t bytes = 0;
  for (std::size_t row = 0; row < RowCount(); ++row) {
    const RowEntry entry = Entry(row);
    if (entry.IsDeleted()) bytes += entry.length;
  }
  return bytes;
}

// A row number is one byte: after 255 entries a page takes no more rows, however many of them are deleted.
bool DataPageEditor::Takes(std::size_t size) const {
  if (RowCount() >= data::kMaximumRowCount) return false;
  const std::size_t needed = size + data::kRowEntrySize;
  return needed <= FreeBytes() || needed <= FreeBytes() + ReclaimableBytes();
}

// A new row gets an entry of its own; those of deleted rows are not used again.
std::uint8_t DataPageEditor::Append(std::span<const std::uint8_t> bytes, std::uint16_t flags) {
  if (bytes.size() + data::kRowEntrySize > FreeBytes()) ReclaimDeleted();
  const std::size_t row = RowCount();
  const std::size_t offset = LowestOffset() - bytes.size();
  page_->SetU16(data::kRowCountOffset, static_cast<std::uint16_t>(row + 1));
  SetEntry(row, offset, flags);
  page_->Put(offset, bytes);
  UpdateFreeBytes();
  return static_cast<std::uint8_t>(row);
}

// The row's own bytes count as room; the directory entry is there already.
bool DataPageEditor::TakesInstead(std::uint8_t row, std::size_t size) const {
  const std::size_t room = Entry(row).length + FreeBytes();
  return size <= room || size <= room + ReclaimableBytes();
}

void DataPageEditor::Replace(std::uint8_t row, std::span<const std::uint8_t> bytes, std::uint16_t flags) {
  // Only when it has to be: reclaiming moves nearly the whole page, and each byte that moves may go to the log.
  if (bytes.size() > Entry(row).length + FreeBytes()) ReclaimDeleted();
  Resize(row, bytes.size(), flags);
  page_->Put(Entry(row).offset, bytes);
  UpdateFreeBytes();
}

void DataPageEditor::Delete(std::uint8_t row) {
  Resize(row, 0, data::kRowDeleted);
  UpdateFreeBytes();
}

// Moves the row's first byte so that it has `size` bytes, and the rows below with it. The content of a row that grows
// is the caller's business. The row's end stays where it is, so nothing above it changes.
void DataPageEditor::Resize(std::size_t row, std::size_t size, std::uint16_t flags) {
  const RowEntry entry = Entry(row);
  const std::size_t lowest = LowestOffset();
  const std::size_t newOffset = entry.offset + entry.length - size;
  page_->Put(newOffset - (entry.offset - lowest), page_->Slice(lowest, entry.offset - lowest));
  // From the lowest row up: where a row ends is seen from the entry before it, which must not have moved yet.
  for (std::size_t below = RowCount() - 1; below > row; --below) {
    const RowEntry other = Entry(below);
    SetEntry(below, other.offset + newOffset - entry.offset, other.flags);
  }
  SetEntry(row, newOffset, flags);
}

void DataPageEditor::ReclaimDeleted() {
  for (std::size_t row = 0; row < RowCount(); ++row) {
    if (Entry(row).IsDeleted()) Resize(row, 0, data::kRowDeleted);
  }
}

void DataPageEditor::SetEntry(std::size_t row, std::size_t offset, unsigned flags) {
  page_->SetU16(data::kRowDirectoryOffset + row * data::kRowEntrySize, static_cast<std::uint16_t>(offset | flags));
}

void DataPageEditor::UpdateFreeBytes() {
  page_->SetU16(data::kFreeBytesOffset, static_cast<std::uint16_t>(FreeBytes()));
}

// Bodies of moved rows count as alive: their rows lie on other pages.
bool DataPageEditor::HasOnlyDeletedRows() const {
  for (std::size_t row = 0; row < RowCount(); ++row) {
    if (!Entry(row).IsDeleted()) return false;
  }
  return true;
}

bool DataPageEditor::HasRoomForTypicalRow() const {
  if (RowCount() >= data::kMaximumRowCount) return false;
  std::size_t rows = 0;
  std::size_t bytes = 0;
  for (std::size_t row = 0; row < RowCount(); ++row) {
    const RowEntry entry = Entry(row);
    // A moved row is 4 bytes here, or what is left of it; neither says how long rows are.
    if (entry.IsDeleted() || entry.IsMoved()) continue;
    ++rows;
    bytes += entry.length;
  }
  // With the directory entry that a new row needs.
  const std::size_t typical = rows == 0 ? 0 : bytes / rows + data::kRowEntrySize;
  return FreeBytes() >= std::max(kLeastUsefulRoom, typical);
}

}  // namespace tavi::access
