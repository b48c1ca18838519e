// Every page of a sound file has one owner or is marked free. The parts of a check claim the pages that they come by;
// what is claimed twice, past the end, or marked free is damage, since it would be overwritten one day, and what nobody
// has claimed in the end is lost room. One name for each page is held in memory.
//
// Usage maps have no owner field that says whose they are, and several tables may share a page of them: so each row is
// claimed on its own, and the pages of rows are looked at when all are known.
#include "access/catalog/PageOwners.h"

#include <set>

#include "access/catalog/TableCheck.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/file/UsageMap.h"

namespace tavi::access {

namespace {

constexpr char kMapPages[] = "the usage maps";

}  // namespace

PageOwners::PageOwners(Pager& pager, CheckReport& report) : pager_(pager), report_(report), owners_(pager.PageCount()) {
  Claim(format::kHeaderPage, "the header");
  Claim(format::kGlobalMapPage, "the map of free pages");
  for (const std::uint8_t row : {format::kGlobalFreeMapRow, format::kGlobalSecondMapRow})
    ClaimMap({format::kGlobalMapPage, row}, "the file");
}

void PageOwners::Claim(PageNumber page, const std::string& owner) {
  const std::string where = "Page " + std::to_string(page) + " of " + owner;
  if (page >= owners_.size()) {
    report_.Add(where + " lies past the end of the file.");
    return;
  }
  if (!owners_[page].empty()) {
    report_.Add(where + " belongs to " + owners_[page] + " too.");
    return;
  }
  // The first to claim a page keeps it; the second finding names both.
  owners_[page] = owner;
  report_.Guard(where, [&] {
    if (PageAllocator(pager_).IsFree(page)) report_.Add(where + " is marked free.");
  });
}

void PageOwners::ClaimMap(RowPointer map, const std::string& owner) {
  const auto [known, isNew] = maps_.emplace(map, owner);
  if (!isNew) {
    report_.Add("The usage map in row " + std::to_string(map.row) + " of page " + std::to_string(map.page) +
                " serves " + known->second + " and " + owner + ".");
    return;
  }
  // A page of maps is claimed with its first row and shared by all others.
  if (map.page != format::kGlobalMapPage && (map.page >= owners_.size() || owners_[map.page] != kMapPages))
    Claim(map.page, kMapPages);
  report_.Guard("A usage map of " + owner, [&] {
    for (const PageNumber bitmap : UsageMap(pager_, map).BitmapPages()) Claim(bitmap, "the bits of a map of " + owner);
  });
}

// Only now is it known which rows of a page of maps are in use, whichever tables they serve.
void PageOwners::CheckMapPages() {
  std::set<PageNumber> pages;
  for (const auto& [map, owner] : maps_) pages.insert(map.page);
  for (const PageNumber number : pages) {
    const std::string where = "Page " + std::to_string(number) + " of usage maps";
    // Page 1 alone names itself as the owner.
    const std::uint32_t owner =
        number == format::kGlobalMapPage ? format::data::kOwnerGlobalMap : format::data::kOwnerUsageMaps;
    report_.Guard(where, [&] {
      const std::vector<RowEntry> entries = CheckDataPage(*pager_.Read(number), owner, where, report_);
      for (std::size_t row = 0; row < entries.size(); ++row) {
        if (!entries[row].IsDeleted() && !maps_.contains({number, static_cast<std::uint8_t>(row)}))
          report_.Leftover(where + ": row " + std::to_string(row) + " is a map of nothing.");
      }
    });
  }
}

// Harmless: such pages are only never used again, until the file is compacted.
void PageOwners::ReportLeaks() {
  const PageAllocator allocator(pager_);
  for (PageNumber page = 0; page < owners_.size(); ++page) {
    if (owners_[page].empty() && !allocator.IsFree(page))
      report_.Leftover("Page " + std::to_string(page) + " is neither free nor owned by anything.");
  }
}

}  // namespace tavi::access
