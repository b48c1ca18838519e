#include "access/table/RowFinder.h"

#include <string>
#include <utility>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"

// A row is known by the place where it was first stored: index entries and other rows hold that, so it stays the row's
// name for life. A row that no longer fits there lies elsewhere, and its place holds a pointer; the place of its body
// is nobody's name, and a walk over the table passes it over. A body never moves on by itself: the pointer is changed
// instead, so one step always ends it.
//
// Whose a page is, is asked each time. Pages are given back and used again, and keep their content meanwhile.

namespace tavi::access {

namespace {

/// The flags are looked at together: both set mean deleted, one alone moved or moved here. A test of one bit would take
/// a deleted row for a moved one.
bool IsRowOfItsOwn(const RowEntry& entry) {
  return !entry.IsDeleted() && !entry.IsMovedTarget();
}

}  // namespace

std::optional<FoundRow> RowFinder::Find(RowPointer row) const {
  if (row.page == 0 || row.page >= pager_->PageCount()) return std::nullopt;
  PageHandle page = pager_->Read(row.page);
  // No error: the page went back to the file when its last row was deleted, and somebody else has it by now.
  if (!DataPageReader::IsOwnedBy(*page, owner_)) return std::nullopt;
  const DataPageReader reader(*page, DataPageLayoutOf(*pager_));
  if (row.row >= reader.RowCount()) return std::nullopt;
  const RowEntry entry = reader.Entry(row.row);
  if (!IsRowOfItsOwn(entry)) return std::nullopt;
  const auto bytes = reader.Bytes(entry);
  if (entry.IsMoved()) return FollowMoved(row, bytes);
  return FoundRow{row, std::move(page), bytes};
}

// Where the pointer does not lead to a body, the row's bytes are lost, and that is damage. Bytes behind the pointer are
// what is left of the old row.
FoundRow RowFinder::FollowMoved(RowPointer row, std::span<const std::uint8_t> pointer) const {
  const std::string name = "row " + std::to_string(row.row) + " of page " + std::to_string(row.page);
  if (pointer.size() < format::row::kRowPointerSize) RaiseDamage(name + " was moved, but does not say where to.");
  const RowPointer body = RowPointer::FromPacked(GetLittle<std::uint32_t>(pointer, 0));
  if (body.page != 0 && body.page < pager_->PageCount()) {
    PageHandle page = pager_->Read(body.page);
    if (DataPageReader::IsOwnedBy(*page, owner_)) {
      const DataPageReader reader(*page, DataPageLayoutOf(*pager_));
      const RowEntry entry = body.row < reader.RowCount() ? reader.Entry(body.row) : RowEntry{};
      if (entry.IsMovedTarget()) return FoundRow{body, page, reader.Bytes(entry)};
    }
  }
  RaiseDamage(name + " was moved to row " + std::to_string(body.row) + " of page " + std::to_string(body.page) +
              ", where no moved row is.");
}

bool RowFinder::IsRow(const Page& page, std::size_t row) const {
  return IsRowOfItsOwn(DataPageReader(page, DataPageLayoutOf(*pager_)).Entry(row));
}

std::int64_t RowFinder::CountOnPage(const Page& page) const {
  const DataPageReader reader(page, DataPageLayoutOf(*pager_));
  std::int64_t count = 0;
  for (std::size_t row = 0; row < reader.RowCount(); ++row) count += IsRowOfItsOwn(reader.Entry(row)) ? 1 : 0;
  return count;
}

// The page is held by the caller, who asks for one row after the other; each costs a look at its directory entry.
std::optional<std::uint8_t> RowFinder::NextOnPage(const Page& page, std::size_t from) const {
  const DataPageReader reader(page, DataPageLayoutOf(*pager_));
  for (std::size_t row = from; row < reader.RowCount(); ++row) {
    if (IsRowOfItsOwn(reader.Entry(row))) return static_cast<std::uint8_t>(row);
  }
  return std::nullopt;
}

}  // namespace tavi::access
