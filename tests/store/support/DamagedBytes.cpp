#include "store/support/DamagedBytes.h"

#include "access/file/Format.h"
#include "access/file/Page.h"

namespace tavi::testing {
namespace {

namespace format = access::format;
using access::kPageSize;

std::size_t U16(const std::string& content, std::size_t offset) {
  return static_cast<std::uint8_t>(content[offset]) |
         static_cast<std::size_t>(static_cast<std::uint8_t>(content[offset + 1])) << 8U;
}

std::size_t OwnerOf(const std::string& content, std::size_t page) {
  const std::size_t offset = page * kPageSize + format::data::kOwnerOffset;
  return U16(content, offset) | U16(content, offset + 2) << 16U;
}

std::string TwoBytesEach(const std::string& text) {
  std::string stored;
  for (const char c : text) stored += {c, '\0'};
  return stored;
}

}  // namespace

std::size_t DamagedBytes::PageWith(const std::string& text) const {
  std::size_t place = content_.rfind(TwoBytesEach(text));
  if (place == std::string::npos) place = content_.rfind(text);
  return place == std::string::npos ? 0 : place / kPageSize;
}

std::size_t DamagedBytes::DefinitionOfTableWith(const std::string& text) const {
  return OwnerOf(content_, PageWith(text));
}

std::vector<std::size_t> DamagedBytes::PagesOf(std::size_t definition, char type) const {
  std::vector<std::size_t> pages;
  for (std::size_t page = 1; page < content_.size() / kPageSize; ++page) {
    if (content_[page * kPageSize] == type && OwnerOf(content_, page) == definition) pages.push_back(page);
  }
  return pages;
}

std::vector<std::size_t> DamagedBytes::IndexPagesOf(std::size_t definition) const {
  std::vector<std::size_t> pages = PagesOf(definition, 3);
  for (const std::size_t leaf : PagesOf(definition, 4)) pages.push_back(leaf);
  return pages;
}

std::size_t DamagedBytes::RowsOn(std::size_t page) const {
  return U16(content_, page * kPageSize + format::data::kRowCountOffset);
}

void DamagedBytes::ZeroPage(std::size_t page) {
  content_.replace(page * kPageSize, kPageSize, kPageSize, '\0');
}

void DamagedBytes::MisplaceRow(std::size_t page, std::size_t row) {
  const std::size_t entry = page * kPageSize + format::data::kRowDirectoryOffset + row * format::data::kRowEntrySize;
  content_.replace(entry, 2, "\xff\x1f");
}

void DamagedBytes::CutBefore(std::size_t page, std::size_t moreBytes) {
  content_.resize(page * kPageSize + moreBytes);
}

}  // namespace tavi::testing
