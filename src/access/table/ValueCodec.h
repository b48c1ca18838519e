#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "access/table/TableDefinition.h"
#include "platform/values/Value.h"

namespace tavi::access {

/// The value that the stored bytes of a column hold (not Boolean, Memo and OLE). Too few bytes raise ProviderFailure
/// that names the column. A column of an unknown type gives the bytes.
Value DecodeValue(std::span<const std::uint8_t> bytes, const ColumnDefinition& column);
/// The stored bytes of a value that already has its column's type (not Boolean, Memo and OLE). Fixed text is padded
/// with blanks, fixed binary with zeros, to the column's length.
std::vector<std::uint8_t> EncodeValue(const Value& value, const ColumnDefinition& column);
/// How many bytes a fixed column takes in a row: its length, none for a Boolean.
std::size_t FixedSize(const ColumnDefinition& column);

}  // namespace tavi::access
