#pragma once

#include <bit>
#include <cstdint>
#include <functional>
#include <string_view>

#include "platform/values/Value.h"

namespace tavi::bench {

/// What a job gave, folded into a few numbers, so that two engines can be compared: how many rows, and a sum over their
/// values that does not depend on the order of the rows, and one that does.
class Answer {
 public:
  void AddNull() { Fold(0x9E3779B97F4A7C15U); }
  /// Numbers, dates and truth values of all widths fold alike.
  void Add(double number) { Fold(std::bit_cast<std::uint64_t>(number + 0.0)); }
  void Add(std::string_view text) { Fold(std::hash<std::string_view>{}(text)); }
  void Add(const Value& value);
  void EndRow() {
    ++rows_;
    unordered_ += row_;
    ordered_ = ordered_ * kFactor + row_;
    row_ = 0;
  }
  /// A number that stands for itself: rows changed, a handicap.
  void AddRow(double number) {
    Add(number);
    EndRow();
  }

  /// A number for all rows, whatever their order.
  [[nodiscard]] std::uint64_t Digest() const { return unordered_; }
  [[nodiscard]] std::uint64_t Rows() const { return rows_; }
  [[nodiscard]] bool IsSameAs(const Answer& other, bool inOrder) const {
    return rows_ == other.rows_ && (inOrder ? ordered_ == other.ordered_ : unordered_ == other.unordered_);
  }

 private:
  static constexpr std::uint64_t kFactor = 0x100000001B3U;

  void Fold(std::uint64_t part) { row_ = (row_ ^ part) * kFactor ^ (row_ >> 29U); }

  std::uint64_t rows_ = 0;
  std::uint64_t row_ = 0;
  std::uint64_t unordered_ = 0;
  std::uint64_t ordered_ = 0;
};

}  // namespace tavi::bench
