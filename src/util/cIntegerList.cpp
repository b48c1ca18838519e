// A sorted vector without repetitions, in which looking up is a search by halves. Values, positions and the count are
// numbers of 16 bits for callers, so whatever would leave that range is an error and never wraps round.
#include "util/cIntegerList.h"

#include <algorithm>
#include <limits>

#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi {
namespace {

constexpr const char* kSource = "TaviMembership";

std::int16_t Checked(std::int32_t number) {
  if (number < std::numeric_limits<std::int16_t>::min() || number > std::numeric_limits<std::int16_t>::max()) {
    throw Error(ErrorNumber::Overflow, kSource, "Overflow: " + std::to_string(number) + " is no 16-bit number.");
  }
  return static_cast<std::int16_t>(number);
}

bool BeginsWithDigit(const std::string& text) {
  return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

}  // namespace

// "1-3, 5" and "1&2&3&5" give the same: what ToPrettyString and ToString write of positive numbers can be read back. A
// number out of range is an error after what stands before it has been taken.
void cIntegerList::SetTo(const std::string& InitString) {
  Clear();
  const std::string text = ReplaceAll(InitString, "&", ",");
  if (Trim(text).empty()) return;
  for (std::string& piece : Split(text, ',')) {
    // A piece may run downwards: "7-5" is 5, 6 and 7.
    const std::int16_t start = ParseLeadingNumber(piece);
    std::int16_t end = start;
    if (piece.starts_with("-")) {
      piece.erase(0, 1);
      end = ParseLeadingNumber(piece);
    }
    AddAllIntegersBetween(std::min(start, end), std::max(start, end));
  }
}

// Cuts the number and the blanks around it from the text, so that a minus for a range is next. Without figures it is 0.
std::int16_t cIntegerList::ParseLeadingNumber(std::string& text) {
  text = Trim(text);
  std::int16_t value = 0;
  while (BeginsWithDigit(text)) {
    value = Checked(value * 10 + (text.front() - '0'));
    text.erase(0, 1);
  }
  text = Trim(text);
  return value;
}

// A copy of the other one's values: it may be this list.
void cIntegerList::MergeIn(const cIntegerList& other) {
  for (const std::int16_t value : std::vector<std::int16_t>(other.values_)) Add(value);
}

// A full list has 65,536 values, more than its count can say.
std::int16_t cIntegerList::Count() const {
  return Checked(static_cast<std::int32_t>(values_.size()));
}

std::int16_t cIntegerList::Item(std::int16_t Index) const {
  if (Index < 1 || static_cast<std::size_t>(Index) > values_.size()) {
    throw Error(ErrorNumber::BadSubscript, kSource,
                "Subscript out of range: the list has no item " + std::to_string(Index) + ".");
  }
  return values_[static_cast<std::size_t>(Index) - 1];
}

std::int16_t cIntegerList::NextAfter(std::int16_t Seed) const {
  const auto next = std::upper_bound(values_.begin(), values_.end(), Seed);
  return next == values_.end() ? std::int16_t{0} : *next;
}

void cIntegerList::Add(std::int16_t NewValue) {
  const auto place = std::lower_bound(values_.begin(), values_.end(), NewValue);
  if (place == values_.end() || *place != NewValue) values_.insert(place, NewValue);
}

void cIntegerList::Remove(std::int16_t NotNeeded) {
  const auto place = std::lower_bound(values_.begin(), values_.end(), NotNeeded);
  if (place != values_.end() && *place == NotNeeded) values_.erase(place);
}

bool cIntegerList::Contains(std::int16_t IntValue) const {
  return std::binary_search(values_.begin(), values_.end(), IntValue);
}

bool cIntegerList::Overlaps(const cIntegerList& other) const {
  return std::any_of(other.values_.begin(), other.values_.end(),
                     [this](std::int16_t value) { return Contains(value); });
}

std::string cIntegerList::ToString() const {
  std::string text;
  for (const std::int16_t value : values_) text += (text.empty() ? "" : "&") + std::to_string(value);
  return text;
}

// A run of one value is written alone, of two or more as a range: "1-2, 4". Negative values stand first, so a list that
// has any gives an empty text.
std::string cIntegerList::ToPrettyString() const {
  std::string text;
  for (std::size_t i = 0; i < values_.size() && values_[i] >= 0;) {
    std::size_t end = i;
    while (end + 1 < values_.size() && values_[end + 1] == values_[end] + 1) ++end;
    text += (text.empty() ? "" : ", ") + std::to_string(values_[i]);
    if (end != i) text += "-" + std::to_string(values_[end]);
    i = end + 1;
  }
  return text;
}

cIntegerList cIntegerList::AllItemsUpTo(std::int16_t MaxValue) const {
  cIntegerList list;
  list.values_.assign(values_.begin(), std::upper_bound(values_.begin(), values_.end(), MaxValue));
  return list;
}

// The difference of two 16-bit numbers needs more bits. Of two values as near as each other the first, smaller one is
// taken.
std::int16_t cIntegerList::NearestTo(std::int16_t Sought) const {
  const auto distance = [Sought](std::int16_t value) { return std::abs(std::int32_t{value} - Sought); };
  const auto nearest = std::min_element(values_.begin(), values_.end(), [&](std::int16_t left, std::int16_t right) {
    return distance(left) < distance(right);
  });
  return nearest == values_.end() ? std::int16_t{0} : *nearest;
}

void cIntegerList::SetToAllIntegersUpTo(std::int16_t n) {
  for (std::int16_t value = n; value >= 1; --value) Add(value);
}

// The value behind the last one is computed as well and checked: counting past the end of the range is an error,
// although all values are in the list then.
void cIntegerList::AddAllIntegersBetween(std::int16_t FirstVal, std::int16_t LastVal) {
  const std::int32_t step = FirstVal <= LastVal ? 1 : -1;
  std::int16_t value = FirstVal;
  for (;; value = Checked(value + step)) {
    Add(value);
    if (value == LastVal) break;
  }
  static_cast<void>(Checked(value + step));
}

// Without repetitions the ends say how many values there must be.
bool cIntegerList::IsContiguous() const {
  return values_.empty() || static_cast<std::size_t>(values_.back() - values_.front()) + 1 == values_.size();
}

}  // namespace tavi
