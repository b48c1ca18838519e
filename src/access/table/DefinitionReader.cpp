#include "access/table/DefinitionReader.h"

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"

namespace tavi::access {

void DefinitionReader::Raise(const std::string& what) const {
  RaiseDamage("the table definition on page " + std::to_string(page_) + ": " + what);
}

void DefinitionReader::Check(std::size_t offset, std::size_t size, const char* field) const {
  if (offset <= bytes_.size() && size <= bytes_.size() - offset) return;
  Raise(std::string(field) + " at byte " + std::to_string(offset) + " lies past the end, after " +
        std::to_string(bytes_.size()) + " bytes.");
}

std::uint8_t DefinitionReader::U8(std::size_t offset, const char* field) const {
  Check(offset, sizeof(std::uint8_t), field);
  return bytes_[offset];
}

std::uint16_t DefinitionReader::U16(std::size_t offset, const char* field) const {
  Check(offset, sizeof(std::uint16_t), field);
  return GetLittle<std::uint16_t>(bytes_, offset);
}

std::uint32_t DefinitionReader::U32(std::size_t offset, const char* field) const {
  Check(offset, sizeof(std::uint32_t), field);
  return GetLittle<std::uint32_t>(bytes_, offset);
}

RowPointer DefinitionReader::Pointer(std::size_t offset, const char* field) const {
  return RowPointer::FromPacked(U32(offset, field));
}

DefinitionReader DefinitionReader::Record(std::size_t size, const char* what) {
  Check(position_, size, what);
  const DefinitionReader record(bytes_.subspan(position_, size), page_);
  position_ += size;
  return record;
}

}  // namespace tavi::access
