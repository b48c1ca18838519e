#include "access/table/DataPage.h"

#include <algorithm>

#include "access/file/EngineError.h"
#include "access/file/Format.h"

namespace tavi::access {
namespace {
namespace d = format::data;
}  // namespace

DataPageView::DataPageView(const Page& page) : page_(page), rowCount_(page.U16(d::kRowCountOffset)) {
  if (page.U8(format::kPageTypeOffset) != format::page_type::kData) {
    RaiseDamage("Page " + std::to_string(page.Number()) + " is no data page");
  }
  if (d::kRowDirectoryOffset + rowCount_ * d::kRowEntrySize > kPageSize) {
    RaiseDamage("Page " + std::to_string(page.Number()) + " counts " + std::to_string(rowCount_) + " rows");
  }
}

std::uint32_t DataPageView::Owner() const {
  return page_.U32(d::kOwnerOffset);
}

std::uint16_t DataPageView::Flags(std::size_t row) const {
  return page_.U16(d::kRowDirectoryOffset + row * d::kRowEntrySize) & d::kRowFlagsMask;
}

std::size_t DataPageView::Start(std::size_t row) const {
  return page_.U16(d::kRowDirectoryOffset + row * d::kRowEntrySize) & d::kRowOffsetMask;
}

std::span<const std::uint8_t> DataPageView::RowBytes(std::size_t row) const {
  const std::size_t start = Start(row);
  const std::size_t end = End(row);
  if (row >= rowCount_ || start > end || end > kPageSize ||
      start < d::kRowDirectoryOffset + rowCount_ * d::kRowEntrySize) {
    RaiseDamage("Row " + std::to_string(row) + " of page " + std::to_string(page_.Number()) + " lies outside the page");
  }
  return page_.Slice(start, end - start);
}

std::size_t DataPageView::FreeBytes() const {
  const std::size_t directoryEnd = d::kRowDirectoryOffset + rowCount_ * d::kRowEntrySize;
  const std::size_t lowest = rowCount_ == 0 ? kPageSize : Start(rowCount_ - 1);
  return lowest > directoryEnd ? lowest - directoryEnd : 0;
}

void DataPageEditor::Format(Page& page, std::uint32_t owner) {
  page.SetU8(format::kPageTypeOffset, format::page_type::kData);
  page.SetU8(format::kPageMarkOffset, format::kPageMark);
  page.SetU16(d::kFreeBytesOffset, static_cast<std::uint16_t>(d::kEmptyFreeBytes));
  page.SetU32(d::kOwnerOffset, owner);
}

bool DataPageEditor::HasRoom(std::size_t size) const {
  const DataPageView view(page_);
  return view.RowCount() < d::kMaximumRowCount && size + d::kRowEntrySize <= view.FreeBytes();
}

bool DataPageEditor::CanResize(std::size_t row, std::size_t size) const {
  const DataPageView view(page_);
  return size <= view.RowBytes(row).size() + view.FreeBytes();
}

std::uint8_t DataPageEditor::Add(std::span<const std::uint8_t> bytes, std::uint16_t flags) {
  const DataPageView view(page_);
  const std::size_t row = view.RowCount();
  const std::size_t start = view.End(row) - bytes.size();
  page_.Put(start, bytes);
  page_.SetU16(d::kRowCountOffset, static_cast<std::uint16_t>(row + 1));
  SetEntry(row, start, flags);
  UpdateFreeBytes();
  return static_cast<std::uint8_t>(row);
}

void DataPageEditor::Replace(std::size_t row, std::span<const std::uint8_t> bytes, std::uint16_t flags) {
  const DataPageView view(page_);
  const std::vector<std::uint8_t> copy(bytes.begin(), bytes.end());
  const std::size_t end = view.End(row);
  const std::size_t oldStart = end - view.RowBytes(row).size();
  const std::size_t lowest = view.Start(view.RowCount() - 1);
  const std::size_t newStart = end - copy.size();
  // Rows behind this one lie below it; they slide by the difference.
  const auto below = page_.Slice(lowest, oldStart - lowest);
  page_.Put(lowest + newStart - oldStart, std::vector<std::uint8_t>(below.begin(), below.end()));
  page_.Put(newStart, copy);
  for (std::size_t other = row + 1; other < view.RowCount(); ++other) {
    SetEntry(other, view.Start(other) + newStart - oldStart, view.Flags(other));
  }
  SetEntry(row, newStart, flags);
  UpdateFreeBytes();
}

void DataPageEditor::Delete(std::size_t row) {
  Replace(row, {}, d::kRowDeleted);
}

void DataPageEditor::SetEntry(std::size_t row, std::size_t offset, std::uint16_t flags) {
  page_.SetU16(d::kRowDirectoryOffset + row * d::kRowEntrySize, static_cast<std::uint16_t>(offset | flags));
}

void DataPageEditor::UpdateFreeBytes() {
  page_.SetU16(d::kFreeBytesOffset, static_cast<std::uint16_t>(DataPageView(page_).FreeBytes()));
}

}  // namespace tavi::access
