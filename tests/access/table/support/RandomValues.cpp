#include "access/table/support/RandomValues.h"

#include <array>
#include <limits>

#include "platform/values/Text.h"

namespace tavi::access::test {

namespace {

std::uint64_t Bits(std::mt19937& random) {
  return (std::uint64_t{random()} << 32U) | random();
}

Bytes RandomBytes(std::mt19937& random, std::size_t size) {
  Bytes bytes(size);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
  return bytes;
}

// Small sizes mostly; sometimes about the limits between the forms of long values, sometimes far above.
std::size_t RandomLongSize(std::mt19937& random) {
  switch (random() % 8) {
    case 0:
      return 60 + random() % 10;
    case 1:
      return 3780 + random() % 50;
    case 2:
      return random() % 20000;
    case 3:
      return random() % 2000;
    default:
      return random() % 120;
  }
}

std::string PaddedText(std::mt19937& random, std::size_t units) {
  std::string text;
  for (std::size_t i = 0; i < units; ++i) text.push_back(static_cast<char>('a' + random() % 26));
  return text;
}

}  // namespace

std::vector<ColumnPlan> RandomColumns(std::mt19937& random, std::size_t count, bool withLongValues) {
  constexpr std::array kTypes = {ColumnType::Boolean,  ColumnType::Byte,   ColumnType::Integer, ColumnType::Long,
                                 ColumnType::Currency, ColumnType::Single, ColumnType::Double,  ColumnType::Date,
                                 ColumnType::Binary,   ColumnType::Text,   ColumnType::Guid,    ColumnType::Numeric,
                                 ColumnType::Memo,     ColumnType::Ole};
  std::vector<ColumnPlan> columns;
  for (std::size_t i = 0; i < count; ++i) {
    ColumnPlan plan;
    plan.name = "column" + std::to_string(i);
    plan.type = kTypes[random() % (withLongValues ? kTypes.size() : kTypes.size() - 2)];
    plan.isFixed = random() % 5 != 0;
    if (plan.type == ColumnType::Text || plan.type == ColumnType::Binary) {
      plan.isFixed = random() % 5 == 0;
      plan.length = static_cast<std::uint16_t>(2 * (1 + random() % 20));
    }
    plan.isCompressed = random() % 2 == 0;
    plan.scale = static_cast<std::uint8_t>(random() % 10);
    columns.push_back(plan);
  }
  return columns;
}

std::string RandomText(std::mt19937& random, std::size_t mostUnits) {
  const std::size_t units = random() % (mostUnits + 1);
  const std::size_t kind = random() % 4;
  std::u16string text;
  while (text.size() < units) {
    if (kind == 0) text.push_back(static_cast<char16_t>(1 + random() % 0x7F));
    if (kind == 1) text.push_back(static_cast<char16_t>(1 + random() % 0xFF));
    if (kind == 2) text.push_back(static_cast<char16_t>(random() % 0xD800));
    if (kind == 3) text.push_back(static_cast<char16_t>(random()));
  }
  return FromUtf16(text);
}

Value RandomValue(std::mt19937& random, const ColumnDefinition& column) {
  if (column.type == ColumnType::Boolean) return random() % 2 == 0;
  if (random() % 5 == 0) return Null{};
  switch (column.type) {
    case ColumnType::Byte:
      return static_cast<std::uint8_t>(random());
    case ColumnType::Integer:
      return static_cast<std::int16_t>(random());
    case ColumnType::Long:
      return static_cast<std::int32_t>(random());
    case ColumnType::Currency:
      return Currency{static_cast<std::int64_t>(Bits(random))};
    case ColumnType::Single:
      return static_cast<float>(static_cast<std::int32_t>(random())) / 16.0F;
    case ColumnType::Double:
      return static_cast<double>(static_cast<std::int64_t>(Bits(random))) / 1024.0;
    case ColumnType::Date:
      return Date{static_cast<double>(random() % 100000) / 8.0};
    case ColumnType::Guid: {
      Guid guid;
      for (std::uint8_t& byte : guid.bytes) byte = static_cast<std::uint8_t>(random());
      return guid;
    }
    case ColumnType::Numeric:
      return Decimal{random() % 2 == 0, Bits(random), Bits(random) | 1U, column.scale};
    case ColumnType::Text:
      if (column.IsFixed()) return PaddedText(random, column.length / 2U);
      return RandomText(random, column.length / 2U);
    case ColumnType::Memo:
      return RandomText(random, RandomLongSize(random) / 2);
    case ColumnType::Ole:
      return RandomBytes(random, RandomLongSize(random));
    default:
      return RandomBytes(random, column.IsFixed() ? column.length : random() % (column.length + 1U));
  }
}

RowValues RandomRow(std::mt19937& random, const TableDefinition& definition) {
  RowValues values;
  for (const ColumnDefinition& column : definition.columns) values.push_back(RandomValue(random, column));
  return values;
}

}  // namespace tavi::access::test
