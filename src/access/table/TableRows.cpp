#include "access/table/TableRows.h"

#include <string>

#include "access/file/EngineError.h"
#include "access/file/UsageMap.h"

// Reading rows. A row is found by its place (RowFinder), taken apart by the definition (RowView), and its long values
// are fetched (LongValues). A walk goes by the table's map of owned pages, in the order of page numbers, and holds
// nothing between two rows but the place of the last one: rows may be changed and deleted meanwhile.
//
// What a row refers to elsewhere, its body when it was moved and its long values, is added up over all rows that are
// read (ReferredBytes). In a damaged file thousands of rows may refer to one value of a megabyte; reading them is
// refused when the sum says that they cannot all own what they refer to.

namespace tavi::access {

FormatVersion TableRows::Version() const {
  if (!version_) version_ = FormatVersionOf(*pager_);
  return *version_;
}

// Who asks by place has the place from an index or a walk: a row that is not there has been deleted since, by another
// user perhaps. That is no damage, and the message says what to do.
FoundRow TableRows::Require(RowPointer row) const {
  auto found = RowFinder(*pager_, definition_->page).Find(row);
  if (!found) {
    RaiseFailure("Record is deleted. There is no " + NameOf(row) + " in the table on page " +
                 std::to_string(definition_->page) + "; read the table again.");
  }
  return *std::move(found);
}

bool TableRows::Exists(RowPointer row) const {
  return RowFinder(*pager_, definition_->page).Find(row).has_value();
}

// A body elsewhere counts like a long value: many rows could point to one.
FoundRow TableRows::RequireToRead(RowPointer row) const {
  FoundRow found = Require(row);
  if (found.body != row) NoteElsewhere(row, ReferredBytes::kBody, found.bytes.size());
  return found;
}

void TableRows::NoteElsewhere(RowPointer row, std::uint16_t part, std::size_t length) const {
  const std::uint64_t fileSize = std::uint64_t{pager_->PageCount()} * kPageSize;
  if (length > fileSize) return;  // Never read: it has an error of its own.
  const auto lengthNow = [this](ReferredBytes::Reference reference) { return SizeElsewhere(reference); };
  if (elsewhere_.Note({row, part}, length, fileSize, lengthNow)) return;
  RaiseDamage(NameOf(row) + " in the table on page " + std::to_string(definition_->page) +
              " refers to bytes elsewhere, and so do so many rows that all of it would be more than the file has.");
}

// What a reference that was noted earlier leads to by now; its row may have been changed or deleted since. Anything
// that cannot be made out counts as nothing, as it cannot be read either.
std::size_t TableRows::SizeElsewhere(ReferredBytes::Reference reference) const {
  try {
    const auto found = RowFinder(*pager_, definition_->page).Find(reference.row);
    if (!found) return 0;
    if (reference.part == ReferredBytes::kBody) return found->body == reference.row ? 0 : found->bytes.size();
    const ColumnDefinition* column = definition_->FindColumn(reference.part);
    const RowView view(found->bytes, Version(), reference.row);
    if (column == nullptr || !column->IsLongValue() || view.IsNull(*column)) return 0;
    return LongValues::SizeElsewhere(view.Stored(*column));
  } catch (const Error&) {
    return 0;
  }
}

Value TableRows::ReadValue(const RowView& view, const ColumnDefinition& column, RowPointer row) const {
  if (!column.IsLongValue()) return view.Get(column);
  if (view.IsNull(column)) return Null{};
  const Stored stored = view.Stored(column);
  // Before the value is fetched: the refusal has to come before the memory is asked for.
  if (const std::size_t length = LongValues::SizeElsewhere(stored); length > 0) NoteElsewhere(row, column.id, length);
  return LongValues(*pager_, Version()).Read(stored, column);
}

RowValues TableRows::Read(RowPointer row) const {
  const FoundRow found = RequireToRead(row);
  const RowView view(found.bytes, Version(), row);
  RowValues values;
  values.reserve(definition_->columns.size());
  for (const ColumnDefinition& column : definition_->columns) values.push_back(ReadValue(view, column, row));
  return values;
}

RowValues TableRows::Read(RowPointer row, const std::vector<bool>& wanted) const {
  RowValues values;
  Read(row, wanted, values);
  return values;
}

void TableRows::Read(RowPointer row, const std::vector<bool>& wanted, RowValues& values) const {
  const FoundRow found = RequireToRead(row);
  const RowView view(found.bytes, Version(), row);
  // Places of columns that are not wanted stay as they are, so that the others keep their positions.
  if (values.size() != definition_->columns.size()) values.assign(definition_->columns.size(), Null{});
  for (std::size_t i = 0; i < values.size() && i < wanted.size(); ++i) {
    if (wanted[i]) values[i] = ReadValue(view, definition_->columns[i], row);
  }
}

// A page that is no longer the table's was given back after its last row was deleted. `holder` keeps the page that is
// returned.
const Page* TableRows::OwnedPage(PageNumber number, PageHandle& holder) const {
  if (number >= pager_->PageCount()) return nullptr;
  holder = pager_->Read(number);
  return DataPageReader::IsOwnedBy(*holder, definition_->page) ? holder.get() : nullptr;
}

const Page& TableRows::RequireOwnedPage(PageNumber number, PageHandle& holder) const {
  const Page* page = OwnedPage(number, holder);
  if (page != nullptr) return *page;
  RaiseDamage("page " + std::to_string(number) + " is listed for the table on page " +
              std::to_string(definition_->page) + ", but is no data page of it.");
}

std::optional<RowPointer> TableRows::Next(std::optional<RowPointer> after) const {
  const RowFinder finder(*pager_, definition_->page);
  PageHandle holder;
  PageNumber from = 0;
  if (after) {
    from = after->page + 1;
    // First the rest of the page of the last row. It may have gone with that row; then the walk goes on with the next
    // page.
    if (const Page* page = OwnedPage(after->page, holder)) {
      const auto row = finder.NextOnPage(*page, std::size_t{after->row} + 1);
      if (row) return RowPointer{after->page, *row};
    }
  }
  // Asked anew each time, as pages may have come and gone; the map finds the next page without going through all.
  const UsageMap owned(*pager_, definition_->ownedPages);
  for (auto number = owned.Next(from); number; number = owned.Next(*number + 1)) {
    const Page& page = RequireOwnedPage(*number, holder);
    if (const auto row = finder.NextOnPage(page, 0)) return RowPointer{*number, *row};
  }
  return std::nullopt;
}

std::int64_t TableRows::Count() const {
  const RowFinder finder(*pager_, definition_->page);
  const UsageMap owned(*pager_, definition_->ownedPages);
  PageHandle holder;
  std::int64_t count = 0;
  for (auto number = owned.Next(0); number; number = owned.Next(*number + 1)) {
    count += finder.CountOnPage(RequireOwnedPage(*number, holder));
  }
  return count;
}

void TableRows::Walk(const std::function<bool(RowPointer)>& visit) const {
  for (auto row = Next(std::nullopt); row; row = Next(row)) {
    if (!visit(*row)) return;
  }
}

std::vector<PageNumber> TableRows::OwnedPagesPastDamage() const {
  try {
    return UsageMap(*pager_, definition_->ownedPages).Pages();
  } catch (const Error&) {
    std::vector<PageNumber> pages;
    PageHandle holder;
    // Without the map every page of the file is asked whose it is. Pages that the table has given back say it, too;
    // their type tells them apart.
    for (PageNumber number = 1; number < pager_->PageCount(); ++number) {
      if (OwnedPage(number, holder) != nullptr) pages.push_back(number);
    }
    return pages;
  }
}

// For who saves what is left: each page and each row is tried by itself, and what fails is told and passed over.
void TableRows::WalkPastDamage(const std::function<void(RowPointer)>& visit,
                               const std::function<void(RowPointer, const Error&)>& damaged) const {
  const RowFinder finder(*pager_, definition_->page);
  for (const PageNumber number : OwnedPagesPastDamage()) {
    PageHandle holder;
    std::size_t count = 0;
    RowPointer place{number, 0};
    try {
      count = DataPageReader(RequireOwnedPage(number, holder), DataPageLayoutOf(*pager_)).RowCount();
    } catch (const Error& error) {
      damaged(place, error);
    }
    for (std::size_t row = 0; row < count; ++row) {
      place.row = static_cast<std::uint8_t>(row);
      try {
        // The place alone is judged here; whether the row can be read shows when it is.
        if (!finder.IsRow(*holder, row)) continue;
      } catch (const Error& error) {
        damaged(place, error);
        continue;
      }
      visit(place);
    }
  }
}

}  // namespace tavi::access
