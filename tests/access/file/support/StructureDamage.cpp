#include "access/file/support/StructureDamage.h"

#include <algorithm>

#include "access/file/Bytes.h"
#include "access/file/Format.h"
#include "access/file/Page.h"

namespace tavi::access::test {

namespace {

using Bytes = std::vector<std::uint8_t>;

enum class FieldKind { PageLink, RowLink, Number, Bits };

/// A field of a page, of 1, 2 or 4 bytes.
struct Field {
  std::size_t offset = 0;
  std::size_t width = 4;
  FieldKind kind = FieldKind::Number;
  const char* name = "";
};

/// Chooses and changes a field of one page.
class PageDamage {
 public:
  PageDamage(Bytes& bytes, std::size_t page, Random& random)
      : bytes_(bytes), page_(page), start_(page * kPageSize), random_(random) {}

  std::string Run() {
    AddFields();
    const Field field = fields_[random_.Below(fields_.size())];
    const std::uint64_t value = NewValue(field);
    for (std::size_t i = 0; i < field.width; ++i) {
      bytes_[start_ + field.offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
    return std::string(field.name) + " (byte " + std::to_string(field.offset) + ") of page " + std::to_string(page_) +
           " = " + std::to_string(value);
  }

 private:
  [[nodiscard]] std::uint8_t U8(std::size_t offset) const { return bytes_[start_ + offset]; }
  [[nodiscard]] std::uint16_t U16(std::size_t offset) const {
    return GetLittle<std::uint16_t>(bytes_, start_ + offset);
  }
  [[nodiscard]] std::uint32_t U32(std::size_t offset) const {
    return GetLittle<std::uint32_t>(bytes_, start_ + offset);
  }
  void Add(std::size_t offset, std::size_t width, FieldKind kind, const char* name) {
    if (offset + width <= kPageSize) fields_.push_back({offset, width, kind, name});
  }

  void AddFields() {
    Add(format::kPageTypeOffset, 1, FieldKind::Number, "type");
    switch (U8(format::kPageTypeOffset)) {
      case format::page_type::kData:
        return AddDataFields();
      case format::page_type::kTableDefinition:
        return AddDefinitionFields();
      case format::page_type::kIndexNode:
      case format::page_type::kIndexLeaf:
        return AddIndexFields();
      default:
        Add(random_.Below(kPageSize - 4), 4, FieldKind::Bits, "bits");
    }
  }

  void AddDataFields() {
    namespace data = format::data;
    Add(data::kOwnerOffset, 4, FieldKind::PageLink, "owner");
    Add(data::kRowCountOffset, 2, FieldKind::Number, "row count");
    const std::size_t rows = std::min<std::size_t>(U16(data::kRowCountOffset), data::kMaximumRowCount);
    if (rows == 0) return;
    for (int i = 0; i < 3; ++i)
      Add(data::kRowDirectoryOffset + 2 * random_.Below(rows), 2, FieldKind::Number, "row offset");
    const std::size_t row = U16(data::kRowDirectoryOffset + 2 * random_.Below(rows)) & data::kRowOffsetMask;
    if (U32(data::kOwnerOffset) == data::kOwnerLongValues) {
      Add(row, 4, FieldKind::RowLink, "next part");
      Add(row, 4, FieldKind::RowLink, "next part");
    } else if (U32(data::kOwnerOffset) <= data::kOwnerGlobalMap) {
      Add(row, 1, FieldKind::Number, "kind of map");
      Add(row + format::usage::kInlineStartOffset, 4, FieldKind::PageLink, "start or bitmap page");
      Add(row + format::usage::kInlineBitmapOffset + random_.Below(60), 4, FieldKind::Bits, "bits of map");
      Add(row + format::usage::kInlineBitmapOffset + random_.Below(60), 4, FieldKind::Bits, "bits of map");
    } else {
      // Lengths and offsets stand at the end of a row; descriptors of long values anywhere.
      Add(row + random_.Below(40), 4, FieldKind::RowLink, "part of row");
      Add(row + random_.Below(200), 4, FieldKind::RowLink, "part of row");
      Add(row + random_.Below(200), 2, FieldKind::Number, "part of row");
      Add(kPageSize - 1 - random_.Below(60), 1, FieldKind::Number, "end of first row");
    }
  }

  void AddDefinitionFields() {
    namespace table = format::table;
    Add(table::kNextPageOffset, 4, FieldKind::PageLink, "next page of definition");
    Add(table::kLengthOffset, 4, FieldKind::Number, "length of definition");
    Add(table::kRowCountOffset, 4, FieldKind::Number, "stated rows");
    Add(table::kLastAutonumberOffset, 4, FieldKind::Number, "last number");
    Add(table::kColumnIdCounterOffset, 2, FieldKind::Number, "columns ever");
    Add(table::kVariableCountOffset, 2, FieldKind::Number, "variable columns");
    Add(table::kColumnCountOffset, 2, FieldKind::Number, "column count");
    Add(table::kLogicalIndexCountOffset, 4, FieldKind::Number, "index count");
    Add(table::kRealIndexCountOffset, 4, FieldKind::Number, "tree count");
    Add(table::kOwnedPagesOffset, 4, FieldKind::RowLink, "map of pages");
    Add(table::kFreeSpacePagesOffset, 4, FieldKind::RowLink, "map of free space");
    const std::size_t trees = std::min<std::size_t>(U32(table::kRealIndexCountOffset), table::kMaximumIndexCount);
    const std::size_t columns = std::min<std::size_t>(U16(table::kColumnCountOffset), table::kMaximumColumnCount);
    const std::size_t records = table::kHeaderSize + trees * format::index_slot::kSize;
    for (int i = 0; i < 4 && columns > 0; ++i) {
      const std::size_t column = records + random_.Below(columns) * format::column::kSize;
      Add(column + format::column::kTypeOffset, 1, FieldKind::Number, "column type");
      Add(column + format::column::kIdOffset, 2, FieldKind::Number, "column number");
      Add(column + format::column::kLengthOffset, 2, FieldKind::Number, "column length");
      Add(column + format::column::kFixedOffsetOffset, 2, FieldKind::Number, "column place");
    }
    for (int i = 0; i < 6; ++i)
      Add(records + random_.Below(kPageSize - records - 4), 4, FieldKind::RowLink, "definition");
    for (int i = 0; i < 6; ++i)
      Add(records + random_.Below(kPageSize - records - 4), 4, FieldKind::PageLink, "definition");
  }

  void AddIndexFields() {
    namespace index = format::index;
    for (int i = 0; i < 3; ++i) {
      Add(index::kPreviousOffset, 4, FieldKind::PageLink, "previous page");
      Add(index::kNextOffset, 4, FieldKind::PageLink, "next page");
      Add(index::kTailOffset, 4, FieldKind::PageLink, "tail page");
    }
    Add(index::kTableOffset, 4, FieldKind::PageLink, "table");
    Add(index::kPrefixLengthOffset, 2, FieldKind::Number, "prefix length");
    Add(index::kLevelOffset, 1, FieldKind::Number, "level");
    for (int i = 0; i < 3; ++i) Add(index::kMaskOffset + random_.Below(40), 1, FieldKind::Bits, "ends of entries");
    for (int i = 0; i < 6; ++i) Add(index::kEntriesOffset + random_.Below(400), 1, FieldKind::Number, "entry");
    for (int i = 0; i < 3; ++i) Add(index::kEntriesOffset + random_.Below(400), 4, FieldKind::PageLink, "entry");
  }

  [[nodiscard]] std::uint64_t NewValue(const Field& field) {
    const std::uint64_t most = field.width == 4 ? 0xFFFFFFFF : field.width == 2 ? 0xFFFF : 0xFF;
    const std::uint64_t old = field.width == 4   ? U32(field.offset)
                              : field.width == 2 ? U16(field.offset)
                                                 : U8(field.offset);
    switch (field.kind) {
      case FieldKind::PageLink:
        return PageToLinkTo();
      case FieldKind::RowLink:
        return (PageToLinkTo() << 8U | random_.Below(random_.Below(4) == 0 ? 256 : 3)) & most;
      case FieldKind::Bits:
        return (random_.Below(2) == 0 ? most : std::uint64_t{random_.Below(most + 1)}) & most;
      default:
        break;
    }
    const std::uint64_t values[] = {0,
                                    1,
                                    most,
                                    most / 2,
                                    old + 1,
                                    old - 1,
                                    old * 2,
                                    old / 2,
                                    old ^ (1U << random_.Below(8 * field.width)),
                                    random_.Below(most + 1)};
    return values[random_.Below(std::size(values))] & most;
  }

  /// The page itself, one of its kind, any, or none.
  [[nodiscard]] std::uint64_t PageToLinkTo() {
    const std::size_t pages = bytes_.size() / kPageSize;
    switch (random_.Below(8)) {
      case 0:
      case 1:
        return page_;
      case 2:
        return random_.Below(pages);
      case 3:
        return random_.Below(2) == 0 ? 0 : pages + random_.Below(3);
      case 4:
        return 0xFFFFFF;
      default:
        break;
    }
    const std::size_t from = random_.Below(pages);
    for (std::size_t i = 0; i < pages; ++i) {
      const std::size_t other = (from + i) % pages;
      if (other != page_ && bytes_[other * kPageSize] == U8(0)) return other;
    }
    return page_;
  }

  Bytes& bytes_;
  std::size_t page_;
  std::size_t start_;
  Random& random_;
  std::vector<Field> fields_;
};

}  // namespace

std::string DamageStructure(std::vector<std::uint8_t>& bytes, std::size_t& page, Random& random) {
  const std::size_t pages = bytes.size() / kPageSize;
  if (pages < 2) return "nothing";
  if (page == 0 || page >= pages) page = 1 + random.Below(pages - 1);
  return PageDamage(bytes, page, random).Run();
}

}  // namespace tavi::access::test
