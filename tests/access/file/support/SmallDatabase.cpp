#include "access/file/support/SmallDatabase.h"

#include <algorithm>
#include <array>

#include "access/file/DatabaseHeader.h"
#include "access/file/Format.h"

namespace tavi::access::test {

namespace {

namespace header = format::header;
namespace data = format::data;
namespace usage = format::usage;

constexpr std::size_t kTextOffset = 16;
constexpr std::size_t kTextSize = 64;
// 42329.94480300926 days, 2015-11-21 22:40:31.
constexpr std::array<std::uint8_t, 8> kDate = {0x3E, 0x85, 0xD3, 0x3B, 0x3E, 0xAB, 0xE4, 0x40};
constexpr std::uint32_t kDateMask = 42329;

void PutText(Page& page, std::size_t offset, const std::string& text) {
  page.Put(offset, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

Page MakeGlobalMapPage(PageNumber count) {
  Page page(format::kGlobalMapPage);
  page.SetU8(format::kPageTypeOffset, format::page_type::kData);
  page.SetU8(format::kPageMarkOffset, format::kPageMark);
  page.SetU32(data::kOwnerOffset, data::kOwnerGlobalMap);
  page.SetU16(data::kRowCountOffset, 2);
  const std::size_t first = kPageSize - usage::kRowSize;
  const std::size_t second = first - usage::kRowSize;
  page.SetU16(data::kRowDirectoryOffset, static_cast<std::uint16_t>(first));
  page.SetU16(data::kRowDirectoryOffset + data::kRowEntrySize, static_cast<std::uint16_t>(second));
  page.SetU16(data::kFreeBytesOffset,
              static_cast<std::uint16_t>(second - data::kRowDirectoryOffset - 2 * data::kRowEntrySize));
  for (PageNumber free = count; free < 512; ++free) {
    const std::size_t at = first + usage::kInlineBitmapOffset + free / 8;
    page.SetU8(at, static_cast<std::uint8_t>(page.U8(at) | (1U << (free % 8))));
  }
  return page;
}

}  // namespace

Page MakeHeaderPage(const SmallDatabaseOptions& options) {
  Page page(format::kHeaderPage);
  page.Put(header::kMagicOffset, header::kMagic);
  PutText(page, header::kEngineNameOffset, header::kEngineNameJet);
  page.SetU8(header::kVersionOffset, options.version);
  page.SetU32(header::kGlobalFreeMapOffset, RowPointer{1, 0}.Packed());
  page.SetU32(header::kGlobalSecondMapOffset, RowPointer{1, 1}.Packed());
  page.SetU32(header::kDatabaseKeyOffset, options.databaseKey);
  page.Put(header::kCreationDateOffset, kDate);
  for (std::size_t i = 0; i < options.password.size(); ++i) {
    page.SetU8(header::kPasswordOffset + 2 * i, static_cast<std::uint8_t>(options.password[i]));
  }
  for (std::size_t i = 0; i < header::kPasswordSize; i += 4) {
    page.SetU32(header::kPasswordOffset + i, page.U32(header::kPasswordOffset + i) ^ kDateMask);
  }
  ToggleHeaderMask(page);
  return page;
}

std::vector<Page> MakeSmallDatabase(PageNumber count, const SmallDatabaseOptions& options) {
  std::vector<Page> pages = {MakeHeaderPage(options), MakeGlobalMapPage(count)};
  for (PageNumber number = 2; number < count; ++number) {
    pages.emplace_back(number);
    SetPageText(pages.back(), "page " + std::to_string(number));
  }
  return pages;
}

void SetPageText(Page& page, const std::string& text) {
  page.Fill(kTextOffset, kTextSize, 0);
  PutText(page, kTextOffset, text);
}

std::string PageText(const Page& page) {
  const auto field = page.Slice(kTextOffset, kTextSize);
  return {field.begin(), std::find(field.begin(), field.end(), std::uint8_t{0})};
}

std::string ReadText(Pager& pager, PageNumber number) {
  const ReadStatement statement(pager);
  return PageText(*pager.Read(number));
}

void WriteText(Pager& pager, PageNumber number, const std::string& text) {
  WriteStatement statement(pager);
  SetPageText(pager.Write(number), text);
  statement.Commit();
}

}  // namespace tavi::access::test
