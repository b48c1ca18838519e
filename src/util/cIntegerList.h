#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavi {

/// A set of 16-bit integers in ascending order, with a readable text form ("1-3, 5") and a compact one ("1&2&3&5").
/// Positions count from 1. Numbers that leave the 16-bit range raise Overflow.
class cIntegerList {
 public:
  void Clear() { values_.clear(); }
  /// Becomes what a text describes: numbers and ranges ("3-1" counts too) separated by "," or "&". An empty piece is 0.
  void SetTo(const std::string& InitString);
  void MergeIn(const cIntegerList& other);
  [[nodiscard]] bool IsEmpty() const { return values_.empty(); }
  [[nodiscard]] std::int16_t Count() const;
  /// Raises BadSubscript outside 1..Count.
  [[nodiscard]] std::int16_t Item(std::int16_t Index) const;
  /// The smallest value greater than `Seed`; 0 when there is none.
  [[nodiscard]] std::int16_t NextAfter(std::int16_t Seed) const;
  /// A value that is there already is ignored.
  void Add(std::int16_t NewValue);
  /// A value that is not there is ignored.
  void Remove(std::int16_t NotNeeded);
  [[nodiscard]] bool Contains(std::int16_t IntValue) const;
  /// True when any value of the other list is in this one.
  [[nodiscard]] bool Overlaps(const cIntegerList& other) const;
  [[nodiscard]] std::string ToString() const;
  /// For positive numbers: the text ends at the first negative value.
  [[nodiscard]] std::string ToPrettyString() const;
  [[nodiscard]] cIntegerList Clone() const { return *this; }
  [[nodiscard]] cIntegerList AllItemsUpTo(std::int16_t MaxValue) const;
  /// The value nearest to `Sought`, the smaller of two; 0 for an empty list.
  [[nodiscard]] std::int16_t NearestTo(std::int16_t Sought) const;
  /// Adds n, n-1, ..., 1 to what is there.
  void SetToAllIntegersUpTo(std::int16_t n);
  /// Adds every integer between two, both included, counting up or down. Counting past the 16-bit range at the end of a
  /// range raises Overflow, after its values were added.
  void AddAllIntegersBetween(std::int16_t FirstVal, std::int16_t LastVal);
  /// -1 for an empty list.
  [[nodiscard]] std::int16_t Largest() const { return values_.empty() ? std::int16_t{-1} : values_.back(); }
  [[nodiscard]] std::int16_t Smallest(std::int16_t DefaultIfEmpty) const {
    return values_.empty() ? DefaultIfEmpty : values_.front();
  }
  /// True when each value is one more than the one before.
  [[nodiscard]] bool IsContiguous() const;

 private:
  static std::int16_t ParseLeadingNumber(std::string& text);

  std::vector<std::int16_t> values_;
};

}  // namespace tavi
