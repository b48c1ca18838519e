// Properties of a table and its columns as a blob: reading and writing. What is not understood is kept byte for byte,
// as captions, formats and column widths are Access' business; a blob that was read and not changed is written as it
// was.
#include "access/catalog/PropertyBlob.h"

#include <algorithm>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/table/TextEncoding.h"
#include "platform/values/Text.h"

namespace tavi::access {

// Layout, by a small blob (one column "X" whose Required is True):
//   4D 52 32 00                                              "MR2" NUL
//   18 00 00 00 80 00                                        chunk of 24 bytes, kind 0x80: names
//     10 00 52 00 65 00 71 00 75 00 69 00 72 00 65 00 64 00  name 0: 16 bytes, "Required"
//   17 00 00 00 01 00                                        chunk of 23 bytes, kind 1: a column's properties
//     08 00 00 00 02 00 58 00                                name part of 8 bytes: 2 bytes, "X"
//     09 00 01 01 00 00 01 00 01                             9 bytes, ddl flag, type 1, name 0, 1 data byte: True
namespace {

namespace property_layout = format::property;

// A value's length, with what stands before the data, has 16 bits in the file.
constexpr std::size_t kMaximumDataSize = 64000;

/// Reads a blob from front to back; each read is checked.
class Reader {
 public:
  /// `base` is where these bytes begin in the blob, for messages that say at which byte of the whole.
  Reader(std::span<const std::uint8_t> bytes, std::size_t base) : bytes_(bytes), base_(base) {}

  [[nodiscard]] bool AtEnd() const { return place_ == bytes_.size(); }
  [[nodiscard]] std::size_t Place() const { return base_ + place_; }

  std::span<const std::uint8_t> Take(std::size_t count, const char* what) {
    if (count > bytes_.size() - place_) Fail(what, "would need " + std::to_string(count) + " bytes");
    const auto result = bytes_.subspan(place_, count);
    place_ += count;
    return result;
  }
  std::uint8_t U8(const char* what) { return Take(1, what)[0]; }
  std::uint16_t U16(const char* what) { return GetLittle<std::uint16_t>(Take(sizeof(std::uint16_t), what), 0); }
  std::uint32_t U32(const char* what) { return GetLittle<std::uint32_t>(Take(sizeof(std::uint32_t), what), 0); }
  std::span<const std::uint8_t> Rest() { return Take(bytes_.size() - place_, "rest"); }
  /// A reader of the next `count` bytes alone.
  Reader Part(std::size_t count, const char* what) {
    const std::size_t start = Place();
    return {Take(count, what), start};
  }

  [[noreturn]] void Fail(const std::string& what, const std::string& found) const {
    throw Error(ErrorNumber::ProviderFailure, kErrorSource,
                "The stored properties are damaged: at byte " + std::to_string(Place()) + " the " + what + " " + found +
                    ". Restore the database from a backup, or delete and set the properties again in Access.");
  }

 private:
  std::span<const std::uint8_t> bytes_;
  std::size_t base_;
  std::size_t place_ = 0;
};

/// Access 97 has single bytes here, which are taken for Latin-1: names and expressions that are obeyed are plain ASCII.
std::string DecodePropertyText(std::span<const std::uint8_t> bytes, bool wide) {
  if (wide) return DecodePlainText(bytes);
  std::u32string points;
  for (const std::uint8_t byte : bytes) points.push_back(byte);
  return FromCodePoints(points);
}

void AppendU16(Bytes& out, std::size_t value) {
  out.push_back(static_cast<std::uint8_t>(value));
  out.push_back(static_cast<std::uint8_t>(value >> 8U));
}

void AppendU32(Bytes& out, std::size_t value) {
  AppendU16(out, value & 0xFFFFU);
  AppendU16(out, value >> 16U);
}

void AppendName(Bytes& out, std::string_view name) {
  const Bytes encoded = EncodePlainText(name);
  AppendU16(out, encoded.size());
  out.insert(out.end(), encoded.begin(), encoded.end());
}

/// The length counts itself and the kind as well.
void AppendChunk(Bytes& out, std::uint16_t kind, const Bytes& body) {
  AppendU32(out, property_layout::kChunkHeaderSize + body.size());
  AppendU16(out, kind);
  out.insert(out.end(), body.begin(), body.end());
}

/// The length counts bytes. Names are those of properties, or of the columns that have them.
std::string ReadName(Reader& reader, bool wide, const char* what) {
  const std::size_t size = reader.U16(what);
  return DecodePropertyText(reader.Take(size, what), wide);
}

/// A value: u16 length, u8 ddl flag, u8 type, u16 name number, u16 data length, data.
/// The data's own length counts, not that of the type: Access stores some 16-bit types in four bytes.
Property ReadProperty(Reader& chunk, const std::vector<std::string>& names) {
  const std::size_t length = chunk.U16("length of a value");
  if (length < property_layout::kValueDataOffset) chunk.Fail("value", "has only " + std::to_string(length) + " bytes");
  Reader value = chunk.Part(length - property_layout::kNameLengthSize, "value");
  Property property;
  property.flags = value.U8("flags of a value");
  property.type = static_cast<ColumnType>(value.U8("type of a value"));
  const std::size_t name = value.U16("name number of a value");
  if (name >= names.size())
    value.Fail("value", "names name " + std::to_string(name) + " of " + std::to_string(names.size()));
  property.name = names[name];
  const auto data = value.Take(value.U16("data length of a value"), "data of a value");
  if (!value.AtEnd()) value.Fail("value", "is longer than its data");
  property.data.assign(data.begin(), data.end());
  return property;
}

}  // namespace

// The names chunk comes first, and every value refers to a name by its place there. A length must be used up exactly at
// each level; what does not fit is damage, as properties that are misread could let wrong rows in.
PropertyBlob PropertyBlob::Parse(std::span<const std::uint8_t> bytes) {
  PropertyBlob blob;
  Reader reader(bytes, 0);
  const auto magic = reader.Take(property_layout::kMagic.size(), "mark");
  const bool wide = std::ranges::equal(magic, property_layout::kMagic);
  blob.wide_ = wide;
  if (!wide && !std::ranges::equal(magic, format::jet3::property::kMagic)) reader.Fail("mark", "is unknown");
  while (!reader.AtEnd()) {
    const std::size_t length = reader.U32("length of a chunk");
    if (length < property_layout::kChunkHeaderSize)
      reader.Fail("chunk", "has only " + std::to_string(length) + " bytes");
    const std::uint16_t kind = reader.U16("kind of a chunk");
    Reader chunk = reader.Part(length - property_layout::kChunkHeaderSize, "chunk");
    if (kind == property_layout::kChunkNames) {
      while (!chunk.AtEnd()) blob.names_.push_back(ReadName(chunk, wide, "name of a property"));
      continue;
    }
    Group group;
    group.kind = kind;
    // A kind that is not known has no structure that is.
    if (kind != property_layout::kChunkObject && kind != property_layout::kChunkColumn) {
      const auto rest = chunk.Rest();
      group.unknown.assign(rest.begin(), rest.end());
    } else {
      const std::size_t namePart = chunk.U32("length of a chunk's name");
      if (namePart < property_layout::kNamePartLengthSize) chunk.Fail("name of a chunk", "has no bytes");
      Reader name = chunk.Part(namePart - property_layout::kNamePartLengthSize, "name of a chunk");
      group.name = ReadName(name, wide, "name of a chunk");
      while (!chunk.AtEnd()) group.properties.push_back(ReadProperty(chunk, blob.names_));
    }
    blob.groups_.push_back(std::move(group));
  }
  return blob;
}

// Always in the form of Access 2000, since files of Access 97 are not written.
Bytes PropertyBlob::Serialize() const {
  Bytes out(property_layout::kMagic.begin(), property_layout::kMagic.end());
  // Names are numbered by their place in this chunk, so that it must come first.
  Bytes names;
  for (const std::string& name : names_) AppendName(names, name);
  AppendChunk(out, property_layout::kChunkNames, names);
  for (const Group& group : groups_) {
    Bytes body = group.unknown;
    if (group.kind == property_layout::kChunkObject || group.kind == property_layout::kChunkColumn) {
      AppendU32(body, property_layout::kNamePartLengthSize + property_layout::kNameLengthSize +
                          EncodePlainText(group.name).size());
      AppendName(body, group.name);
      for (const Property& property : group.properties) {
        AppendU16(body, property_layout::kValueDataOffset + property.data.size());
        body.push_back(property.flags);
        body.push_back(static_cast<std::uint8_t>(property.type));
        // Every property's name is in the list: it came from there, or Set has put it there.
        const auto name = std::ranges::find(names_, property.name);
        AppendU16(body, static_cast<std::size_t>(name - names_.begin()));
        AppendU16(body, property.data.size());
        body.insert(body.end(), property.data.begin(), property.data.end());
      }
    }
    AppendChunk(out, group.kind, body);
  }
  return out;
}

// Properties of the table itself (kind 0) have an empty name in their chunk and are passed over.
const Property* PropertyBlob::Find(std::string_view column, std::string_view name) const {
  for (const Group& group : groups_) {
    if (group.kind != property_layout::kChunkColumn || !EqualIgnoringCase(group.name, column)) continue;
    for (const Property& property : group.properties)
      if (EqualIgnoringCase(property.name, name)) return &property;
  }
  return nullptr;
}

std::optional<bool> PropertyBlob::ColumnFlag(std::string_view column, std::string_view name) const {
  const Property* property = Find(column, name);
  // A property of another type than it should have counts as not set.
  if (property == nullptr || property->type != ColumnType::Boolean || property->data.empty()) return std::nullopt;
  return property->data[0] != 0;
}

std::optional<std::string> PropertyBlob::ColumnText(std::string_view column, std::string_view name) const {
  const Property* property = Find(column, name);
  if (property == nullptr || (property->type != ColumnType::Text && property->type != ColumnType::Memo)) {
    return std::nullopt;
  }
  return DecodePropertyText(property->data, wide_);
}

void PropertyBlob::SetColumnFlag(std::string_view column, std::string_view name, bool value) {
  Set(column, {std::string(name), ColumnType::Boolean, {static_cast<std::uint8_t>(value ? 1 : 0)}});
}

void PropertyBlob::SetColumnText(std::string_view column, std::string_view name, std::string_view value) {
  Set(column, {std::string(name), ColumnType::Memo, EncodePlainText(value)});
}

// A property that is there keeps the spelling of its name and its place; a new one goes to the end of its column's
// chunk, and a new column's chunk to the end of the blob. Names are never taken out of the list: others may refer to
// them.
void PropertyBlob::Set(std::string_view column, Property property) {
  if (property.data.size() > kMaximumDataSize) {
    throw Error(ErrorNumber::ProviderFailure, kErrorSource,
                "The property '" + property.name + "' of the column '" + std::string(column) +
                    "' is too long. Shorten it to 32,000 characters.");
  }
  const auto isItsName = [&](const std::string& name) { return EqualIgnoringCase(name, property.name); };
  if (const auto known = std::ranges::find_if(names_, isItsName); known != names_.end()) {
    property.name = *known;
  } else {
    names_.push_back(property.name);
  }
  auto group = std::ranges::find_if(groups_, [&](const Group& candidate) {
    return candidate.kind == property_layout::kChunkColumn && EqualIgnoringCase(candidate.name, column);
  });
  // Found by name, as columns have no other tie to their properties: renaming one means renaming its chunk.
  if (group == groups_.end()) {
    groups_.push_back({property_layout::kChunkColumn, std::string(column), {}, {}});
    group = std::prev(groups_.end());
  }
  for (Property& existing : group->properties) {
    if (isItsName(existing.name)) {
      property.name = existing.name;
      existing = std::move(property);
      return;
    }
  }
  group->properties.push_back(std::move(property));
}

// A column without properties has no chunk.
void PropertyBlob::RemoveColumn(std::string_view column) {
  std::erase_if(groups_, [&](const Group& group) {
    return group.kind == property_layout::kChunkColumn && EqualIgnoringCase(group.name, column);
  });
}

}  // namespace tavi::access
