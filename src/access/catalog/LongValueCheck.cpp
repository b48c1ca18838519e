// Long values lie on pages of their own, a set of pages for each column. A row has a descriptor of 12 bytes, which
// holds the length and, by the top bits of its first word, one of three forms:
//
//   80  inline   the bytes follow the descriptor in the row
//   40  single   one row of a long-value page, shared with other values' rows
//   00  chain    a row on each of several pages: link to the next (4 bytes, 0 at the end), then data
//
// The check lists all parts that are on the column's pages first, and crosses them off as rows refer to them. So it
// finds a reference to nothing, two rows with one value, a chain that leads in a circle (its second visit finds the
// part used), and in the end what nobody refers to. It remembers a few words for each part, whatever the values' size.
#include "access/catalog/TableCheck.h"
#include "access/file/Bytes.h"
#include "access/file/Format.h"
#include "access/file/UsageMap.h"

namespace tavi::access {

namespace {

namespace long_value = format::long_value;

}  // namespace

LongValueCheck::LongValueCheck(Pager& pager, std::string where, const LongValueMaps& maps, PageOwners& owners,
                               CheckReport& report)
    : pager_(pager), where_(std::move(where)), report_(report) {
  // Columns that never had a long value may have no maps.
  if (!maps.ownedPages.IsNone()) owners.ClaimMap(maps.ownedPages, where_);
  if (!maps.freeSpacePages.IsNone()) owners.ClaimMap(maps.freeSpacePages, where_);
  report_.Guard(where_, [&] {
    std::set<PageNumber> ownedPages;
    for (const PageNumber page : UsageMap(pager_, maps.freeSpacePages).Pages()) freeSpacePages_.insert(page);
    for (const PageNumber number : UsageMap(pager_, maps.ownedPages).Pages()) {
      owners.Claim(number, where_);
      ownedPages.insert(number);
      report_.CountPage();
      const std::string place = "Page " + std::to_string(number) + " of " + where_;
      const std::vector<RowEntry> entries =
          CheckDataPage(*pager_.Read(number), format::data::kOwnerLongValues, place, report_);
      for (std::size_t row = 0; row < entries.size(); ++row) {
        // What a deleted row's bytes still hold belongs to nobody.
        if (!entries[row].IsDeleted())
          parts_[{number, static_cast<std::uint8_t>(row)}] = {entries[row].offset, entries[row].length};
      }
    }
    for (const PageNumber page : freeSpacePages_) {
      if (!ownedPages.contains(page))
        // Nobody stores a value there: a page that is not the column's own is passed over when room is looked for.
        report_.Leftover("Page " + std::to_string(page) + " is offered for values of " + where_ + " but not its own.");
    }
  });
}

LongValueCheck::Part* LongValueCheck::Take(RowPointer place, const std::string& value) {
  const auto part = parts_.find(place);
  if (part == parts_.end()) {
    report_.Add(value + " refers to " + NameOf(place) + ", which is none of the column's long values.");
    return nullptr;
  }
  if (part->second.used) {
    report_.Add(value + " refers to " + NameOf(place) + ", which belongs to another value.");
    return nullptr;
  }
  part->second.used = true;
  return &part->second;
}

void LongValueCheck::Use(std::span<const std::uint8_t> descriptor, RowPointer row) {
  const std::string value = "The value of " + where_ + " in " + NameOf(row);
  if (descriptor.size() < long_value::kDescriptorSize) {
    report_.Add(value + " has only " + std::to_string(descriptor.size()) + " bytes.");
    return;
  }
  const auto head = GetLittle<std::uint32_t>(descriptor, long_value::kLengthOffset);
  const std::size_t length = head & long_value::kLengthMask;
  const auto place = RowPointer::FromPacked(GetLittle<std::uint32_t>(descriptor, long_value::kPointerOffset));
  switch (head & long_value::kFormMask) {
    case long_value::kFormInline:
      if (length > descriptor.size() - long_value::kDescriptorSize) report_.Add(value + " is cut off.");
      break;
    case long_value::kFormSingle:
      UseSingle(place, length, value);
      break;
    case long_value::kFormChain:
      UseChain(place, length, value);
      break;
    default:
      report_.Add(value + " has an unknown form.");
  }
}

// The value is the whole row: its length is told twice.
void LongValueCheck::UseSingle(RowPointer place, std::size_t length, const std::string& value) {
  const Part* part = Take(place, value);
  if (part != nullptr && part->length != length)
    report_.Add(value + " has " + std::to_string(part->length) + " bytes instead of " + std::to_string(length) + ".");
}

// The parts together must have the length that the descriptor tells.
void LongValueCheck::UseChain(RowPointer place, std::size_t length, const std::string& value) {
  std::size_t found = 0;
  while (!place.IsNone()) {
    const Part* part = Take(place, value);
    if (part == nullptr) return;
    if (part->length < long_value::kChainPointerSize) {
      report_.Add(value + " has a part without a link.");
      return;
    }
    // Pages of a chain hold one part each. Other programs offer them all the same; values that are put beside it do no
    // harm.
    if (freeSpacePages_.contains(place.page))
      report_.Leftover(value + " has a part on page " + std::to_string(place.page) +
                       ", which is offered for other values.");
    found += part->length - long_value::kChainPointerSize;
    place = RowPointer::FromPacked(pager_.Read(place.page)->U32(part->offset));
  }
  if (found != length)
    report_.Add(value + " has " + std::to_string(found) + " bytes instead of " + std::to_string(length) + ".");
}

void LongValueCheck::ReportUnused() {
  for (const auto& [place, part] : parts_)
    if (!part.used) report_.Leftover("The long value in " + NameOf(place) + " of " + where_ + " is used by no row.");
}

}  // namespace tavi::access
