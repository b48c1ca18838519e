// Whether two tables hold the same rows (declared in Compact.h).
#include <algorithm>
#include <bit>

#include "access/catalog/Compact.h"

namespace tavi::access {

namespace {

/// The bits of a number: two that are no numbers are the same when their bits are, 0 and -0 are not.
template <typename Number>
auto BitsOf(Number number) {
  if constexpr (sizeof(Number) == sizeof(std::uint32_t)) {
    return std::bit_cast<std::uint32_t>(number);
  } else {
    return std::bit_cast<std::uint64_t>(number);
  }
}

/// A sum of values that tells nearly all that differ apart.
/// Lengths go in before contents, so that "ab" and "c" are not "a" and "bc".
class ValueHash {
 public:
  /// The kind goes in as well: an empty text and no bytes are different values.
  void Add(const Value& value) {
    AddNumber(value.index());
    std::visit([this](const auto& content) { AddContent(content); }, value);
  }
  [[nodiscard]] std::uint64_t Sum() const { return sum_; }

 private:
  void AddByte(std::uint8_t byte) {
    // The sum is FNV-1a: byte by byte, cheap, and good enough where equal sums are followed by a comparison of values.
    constexpr std::uint64_t kPrime = 0x100000001B3U;
    sum_ = (sum_ ^ byte) * kPrime;
  }
  void AddNumber(std::uint64_t number) {
    for (unsigned shift = 0; shift < 64; shift += 8) AddByte(static_cast<std::uint8_t>(number >> shift));
  }
  template <typename Range>
  void AddBytes(const Range& bytes) {
    AddNumber(bytes.size());
    for (const auto byte : bytes) AddByte(static_cast<std::uint8_t>(byte));
  }

  void AddContent(Null /*none*/) {}
  void AddContent(bool truth) { AddByte(truth ? 1 : 0); }
  void AddContent(std::uint8_t number) { AddNumber(number); }
  void AddContent(std::int16_t number) { AddNumber(static_cast<std::uint64_t>(number)); }
  void AddContent(std::int32_t number) { AddNumber(static_cast<std::uint64_t>(number)); }
  void AddContent(float number) { AddNumber(BitsOf(number)); }
  void AddContent(double number) { AddNumber(BitsOf(number)); }
  void AddContent(Currency amount) { AddNumber(static_cast<std::uint64_t>(amount.tenThousandths)); }
  void AddContent(const Decimal& number) {
    AddNumber(number.high);
    AddNumber(number.low);
    AddByte(number.scale);
    AddByte(number.negative ? 1 : 0);
  }
  void AddContent(Date date) { AddNumber(BitsOf(date.days)); }
  void AddContent(const std::string& text) { AddBytes(text); }
  void AddContent(const Bytes& bytes) { AddBytes(bytes); }
  void AddContent(const Guid& guid) { AddBytes(guid.bytes); }

  std::uint64_t sum_ = 0xCBF29CE484222325U;
};

/// By bits, as a copy must be exact: comparing numbers would take 0 and -0 for the same and differ from itself where a
/// value is no number.
bool SameValue(const Value& left, const Value& right) {
  // Values are compared by their kind first: a Long 1 is not a Double 1.
  if (left.index() != right.index()) return false;
  if (const auto* number = std::get_if<float>(&left)) return BitsOf(*number) == BitsOf(std::get<float>(right));
  if (const auto* number = std::get_if<double>(&left)) return BitsOf(*number) == BitsOf(std::get<double>(right));
  if (const auto* date = std::get_if<Date>(&left)) return BitsOf(date->days) == BitsOf(std::get<Date>(right).days);
  return left == right;
}

/// A row of a table, by what its values add up to: where rows lie says nothing, a table laid out anew has other places.
struct SummedRow {
  std::uint64_t sum = 0;
  RowPointer place;
};

std::vector<SummedRow> SortedRows(Table& table) {
  std::vector<SummedRow> rows;
  for (auto place = table.Next(std::nullopt); place.has_value(); place = table.Next(place)) {
    ValueHash hash;
    for (const Value& value : table.Read(*place)) hash.Add(value);
    // Sixteen bytes a row are remembered, whatever its values are; rows are read once more to be compared.
    rows.push_back({hash.Sum(), *place});
  }
  std::ranges::stable_sort(rows, {}, &SummedRow::sum);
  return rows;
}

/// Lengths, numbers and places of columns may differ: a table that was laid out anew has others.
bool SameColumns(const Table& left, const Table& right) {
  return std::ranges::equal(left.Columns(), right.Columns(), [](const Column& one, const Column& other) {
    return one.definition.name == other.definition.name && one.definition.type == other.definition.type;
  });
}

}  // namespace

// Equal rows have equal sums, so that equal tables agree row by row in the order of the sums; different rows of one
// sum, of which there are none in practice, could only make equal tables look different.
bool HaveSameRows(Table& left, Table& right) {
  if (!SameColumns(left, right)) return false;
  const std::vector<SummedRow> leftRows = SortedRows(left);
  const std::vector<SummedRow> rightRows = SortedRows(right);
  return std::ranges::equal(leftRows, rightRows, [&](const SummedRow& one, const SummedRow& other) {
    return one.sum == other.sum && std::ranges::equal(left.Read(one.place), right.Read(other.place), SameValue);
  });
}

}  // namespace tavi::access
