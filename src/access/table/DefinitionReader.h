#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "access/file/Page.h"

namespace tavi::access {

/// The bytes of a table definition with a place to read on from. Every read is checked against the end; what lies past
/// it raises ProviderFailure that names the definition's page and the field.
class DefinitionReader {
 public:
  /// The whole definition; fields by their fixed places.
  DefinitionReader(std::span<const std::uint8_t> bytes, PageNumber page) : bytes_(bytes), page_(page) {}

  [[nodiscard]] std::uint8_t U8(std::size_t offset, const char* field) const;
  [[nodiscard]] std::uint16_t U16(std::size_t offset, const char* field) const;
  [[nodiscard]] std::uint32_t U32(std::size_t offset, const char* field) const;
  [[nodiscard]] RowPointer Pointer(std::size_t offset, const char* field) const;

  /// The place to read on from.
  [[nodiscard]] std::size_t Position() const { return position_; }
  void MoveTo(std::size_t position) { position_ = position; }
  /// The next `size` bytes as a record of their own, and moves behind them.
  [[nodiscard]] DefinitionReader Record(std::size_t size, const char* what);
  [[nodiscard]] std::span<const std::uint8_t> Bytes() const { return bytes_; }

  [[noreturn]] void Raise(const std::string& what) const;

 private:
  void Check(std::size_t offset, std::size_t size, const char* field) const;

  std::span<const std::uint8_t> bytes_;
  PageNumber page_;
  std::size_t position_ = 0;
};

}  // namespace tavi::access
