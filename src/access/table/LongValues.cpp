#include "access/table/LongValues.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/table/DataPage.h"
#include "access/table/RowPlaces.h"
#include "access/table/TextEncoding.h"
#include "access/table/ValueCodec.h"

// A long value is in its row, in one row of a shared page, or in a chain of pages of its own, by its length before
// compression. Access decides so, and values that are stored here are what it would have stored. Compression follows
// the form: in the row always where it can be, in one row by the column's flag, in a chain never.
//
// Reading trusts nothing: the stated length is held against the file before memory is taken, each part must be on a
// page of long values, and a chain that comes back to one of its parts is refused. Removing frees only what the
// column's own map says to be its own, as all pages of long values name the same owner.

namespace tavi::access {

namespace {

namespace long_value = format::long_value;
namespace data = format::data;

using Stored = std::span<const std::uint8_t>;
using Form = PreparedLongValue::Form;

/// What the row holds of a value, without data that follow.
struct Descriptor {
  std::uint32_t form = 0;
  std::size_t length = 0;
  RowPointer first;
};

std::optional<Descriptor> ReadDescriptor(Stored stored) {
  if (stored.size() < long_value::kDescriptorSize) return std::nullopt;
  const auto head = GetLittle<std::uint32_t>(stored, long_value::kLengthOffset);
  return Descriptor{head & long_value::kFormMask, head & long_value::kLengthMask,
                    RowPointer::FromPacked(GetLittle<std::uint32_t>(stored, long_value::kPointerOffset))};
}

/// The stamp at its end stays zero, as on the first page of a chain: equal is what readers want.
Bytes MakeDescriptor(std::uint32_t form, std::size_t length, RowPointer first) {
  Bytes bytes(long_value::kDescriptorSize);
  PutLittle(std::span(bytes), long_value::kLengthOffset, form | static_cast<std::uint32_t>(length));
  PutLittle(std::span(bytes), long_value::kPointerOffset, first.Packed());
  return bytes;
}

[[noreturn]] void RaiseBadValue(const ColumnDefinition& column, const std::string& what) {
  RaiseDamage("the long value of the field '" + column.name + "' " + what);
}

/// Readers accept more in one row (4,080 bytes) than is ever stored so.
Form FormFor(std::size_t uncompressedSize) {
  if (uncompressedSize <= long_value::kMaximumInlineSize) return Form::Inline;
  return uncompressedSize <= long_value::kMaximumSingleSize ? Form::Single : Form::Chain;
}

RowSpace SpaceOf(Pager& pager, const LongValueMaps& maps) {
  return {pager, data::kOwnerLongValues, maps.ownedPages, maps.freeSpacePages};
}

}  // namespace

std::size_t PreparedLongValue::SizeInRow() const {
  return long_value::kDescriptorSize + (form == Form::Inline ? data.size() : 0);
}

PreparedLongValue PrepareLongValue(const Value& value, const ColumnDefinition& column) {
  PreparedLongValue prepared;
  const auto* text = std::get_if<std::string>(&value);
  if (column.type == ColumnType::Memo && text != nullptr) {
    // By the length of the plain form, even where the compressed one would be short enough for the row.
    prepared.form = FormFor(Utf16Length(*text) * sizeof(char16_t));
    const bool compress = prepared.form == Form::Inline || (prepared.form == Form::Single && column.IsCompressed());
    prepared.data = EncodeText(*text, compress);
    // Switches of mode may make it longer than that.
    prepared.form = std::max(prepared.form, FormFor(prepared.data.size()));
  } else if (const auto* bytes = std::get_if<Bytes>(&value); column.type == ColumnType::Ole && bytes != nullptr) {
    prepared.form = FormFor(bytes->size());
    prepared.data = *bytes;
  } else {
    throw Error(ErrorNumber::ProviderTypeConflict, kErrorSource,
                "Data type mismatch in criteria expression. The value for the field '" + column.name +
                    "' is not of the field's type.");
  }
  // The length has 30 bits; the others hold the form.
  if (prepared.data.size() > long_value::kLengthMask) {
    RaiseFailure("The value for the field '" + column.name + "' has " + std::to_string(prepared.data.size()) +
                 " bytes; a field can hold " + std::to_string(long_value::kLengthMask) +
                 ". Store it in a file of its own.");
  }
  return prepared;
}

bool LongValues::IsElsewhere(Stored stored) {
  const std::optional<Descriptor> descriptor = ReadDescriptor(stored);
  return descriptor && descriptor->form != long_value::kFormInline;
}

std::size_t LongValues::SizeElsewhere(Stored stored) {
  return IsElsewhere(stored) ? ReadDescriptor(stored)->length : 0;
}

// ---------------------------------------------------------------------------------------------------------------------
// Reading
// ---------------------------------------------------------------------------------------------------------------------

Value LongValues::Read(Stored stored, const ColumnDefinition& column) const {
  const std::optional<Descriptor> descriptor = ReadDescriptor(stored);
  if (descriptor && descriptor->form == long_value::kFormInline) {
    const Stored inlined = stored.subspan(long_value::kDescriptorSize);
    // A row may have more bytes behind the value, never fewer.
    if (descriptor->length > inlined.size()) RaiseBadValue(column, "is cut off in its row.");
    return DecodeValue(inlined.first(descriptor->length), column, version_);
  }
  return DecodeValue(ReadBytes(stored, column), column, version_);
}

Bytes LongValues::ReadBytes(Stored stored, const ColumnDefinition& column) const {
  // Not null, and without a descriptor: an empty value.
  if (stored.empty()) return {};
  const std::optional<Descriptor> descriptor = ReadDescriptor(stored);
  if (!descriptor) RaiseBadValue(column, "has a descriptor of only " + std::to_string(stored.size()) + " bytes.");
  if (descriptor->form == long_value::kFormChain) return ReadChain(descriptor->first, descriptor->length, column);
  if (descriptor->form != long_value::kFormSingle) RaiseBadValue(column, "has an unknown form.");
  const auto row = RowFinder(*pager_, data::kOwnerLongValues).Find(descriptor->first);
  // A row may be longer than the value; the descriptor says what counts.
  if (!row || row->bytes.size() < descriptor->length) {
    RaiseBadValue(column, "should have " + std::to_string(descriptor->length) + " bytes in " +
                              NameOf(descriptor->first) + ", which are not there.");
  }
  const Stored bytes = row->bytes.first(descriptor->length);
  return {bytes.begin(), bytes.end()};
}

// The parts are put together in the order of their pointers. The length says where to stop, not the pointer of the last
// part, which nobody looks at.
Bytes LongValues::ReadChain(RowPointer first, std::size_t length, const ColumnDefinition& column) const {
  if (length > std::size_t{pager_->PageCount()} * kPageSize) {
    RaiseBadValue(column, "is said to have " + std::to_string(length) + " bytes, more than the file.");
  }
  const RowFinder finder(*pager_, data::kOwnerLongValues);
  Bytes value;
  value.reserve(length);
  std::unordered_set<std::uint32_t> taken;
  for (RowPointer place = first; value.size() < length;) {
    // A part that comes again is not this value's own, even if the length would come out right.
    if (!taken.insert(place.Packed()).second)
      RaiseBadValue(column, "has parts that lead in a circle to " + NameOf(place) + ".");
    const auto row = place.IsNone() ? std::nullopt : finder.Find(place);
    if (!row || row->bytes.size() <= long_value::kChainPointerSize) {
      RaiseBadValue(column, "breaks off after " + std::to_string(value.size()) + " of " + std::to_string(length) +
                                " bytes: the next part, " + NameOf(place) + ", is not there.");
    }
    const Stored part = row->bytes.subspan(long_value::kChainPointerSize);
    const Stored needed = part.first(std::min(part.size(), length - value.size()));
    value.insert(value.end(), needed.begin(), needed.end());
    place = RowPointer::FromPacked(GetLittle<std::uint32_t>(row->bytes, 0));
  }
  return value;
}

// ---------------------------------------------------------------------------------------------------------------------
// Storing and freeing
// ---------------------------------------------------------------------------------------------------------------------

Bytes LongValues::Store(const PreparedLongValue& value, const LongValueMaps& maps) {
  switch (value.form) {
    case Form::Single:
      return MakeDescriptor(long_value::kFormSingle, value.data.size(),
                            SpaceOf(*pager_, maps).Insert(value.data, data::kRowNormal, 0));
    case Form::Chain:
      return MakeDescriptor(long_value::kFormChain, value.data.size(), StoreChain(value.data, maps));
    default:
      Bytes bytes = MakeDescriptor(long_value::kFormInline, value.data.size(), {});
      bytes.insert(bytes.end(), value.data.begin(), value.data.end());
      return bytes;
  }
}

// All pages come first, as each part names the next one. The stamp stays zero, on the first page as in the descriptor.
// Each page but the last is full; the last one is not offered for other rows either.
RowPointer LongValues::StoreChain(Stored bytes, const LongValueMaps& maps) {
  RowSpace space = SpaceOf(*pager_, maps);
  std::vector<PageNumber> pages;
  for (std::size_t begin = 0; begin < bytes.size(); begin += long_value::kChainDataSize) {
    pages.push_back(space.AddPage().Number());
  }
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const Stored part = bytes.subspan(i * long_value::kChainDataSize);
    // Row 0 of the next page; every page of a chain has just that one row.
    const RowPointer next = {i + 1 < pages.size() ? pages[i + 1] : 0, 0};
    Bytes row(long_value::kChainPointerSize);
    PutLittle(std::span(row), 0, next.Packed());
    const Stored taken = part.first(std::min(part.size(), long_value::kChainDataSize));
    row.insert(row.end(), taken.begin(), taken.end());
    DataPageEditor(pager_->Write(pages[i])).Append(row, data::kRowNormal);
  }
  return {pages.front(), 0};
}

// A part is deleted after its pointer was read. A chain in a circle ends by itself, at a part that is gone already; a
// part that belongs to somebody else ends it, too.
void LongValues::Remove(Stored stored, const LongValueMaps& maps) {
  const std::optional<Descriptor> descriptor = ReadDescriptor(stored);
  if (!descriptor || descriptor->form == long_value::kFormInline) return;
  RowSpace space = SpaceOf(*pager_, maps);
  const RowFinder finder(*pager_, data::kOwnerLongValues);
  for (RowPointer place = descriptor->first; !place.IsNone() && space.Owns(place.page);) {
    const auto row = finder.Find(place);
    if (!row) return;
    const bool hasNext =
        descriptor->form == long_value::kFormChain && row->bytes.size() >= long_value::kChainPointerSize;
    const RowPointer next = hasNext ? RowPointer::FromPacked(GetLittle<std::uint32_t>(row->bytes, 0)) : RowPointer{};
    space.Delete(place);
    place = next;
  }
}

}  // namespace tavi::access
