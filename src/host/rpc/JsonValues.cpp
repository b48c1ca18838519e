#include "host/rpc/JsonValues.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/rpc/RequestText.h"

// Each type of the component from and to JSON. Nothing is converted that was not meant: a text is never taken for a
// number, nor 1 for true, since a caller that sends another type has made a mistake, which would be stored otherwise.
// Null is the zero value of a type, as of an argument that is only passed back.
namespace tavi::host {
namespace {

// Enough to know what was sent; it may be megabytes.
constexpr std::size_t kShownCharacters = 40;

[[noreturn]] void Refuse(const Json& json, const std::string& expected) {
  // ASCII, so that cutting it leaves no half of a character.
  std::string found = json.CompactAscii();
  if (found.size() > kShownCharacters) found = found.substr(0, kShownCharacters) + "...";
  throw RpcError(RpcCode::InvalidParams, expected + " is expected, not " + found);
}

/// Whole by value and not by writing: 5.0 is 5, and 5e0 too.
template <typename Integer>
void ReadWhole(const Json& json, Integer& value) {
  constexpr auto kLeast = std::numeric_limits<Integer>::min();
  constexpr auto kMost = std::numeric_limits<Integer>::max();
  const std::string expected = "a whole number from " + std::to_string(kLeast) + " to " + std::to_string(kMost);
  value = 0;
  if (json.IsNull()) return;
  if (!json.IsNumber()) Refuse(json, expected);
  // Numbers beyond 64 bits come as floating-point ones.
  const auto number = json.Number();
  // As doubles, in which all numbers of 32 bits are exact; what is out of range must not be cast.
  if (std::trunc(number) != number || number < kLeast || number > kMost) Refuse(json, expected);
  value = static_cast<Integer>(number);
}

}  // namespace

void ReadJson(const Json& json, bool& value) {
  value = false;
  if (json.IsNull()) return;
  // Not 0 and 1, nor "true": see the head.
  if (!json.IsFlag()) Refuse(json, "true or false");
  value = json.Flag();
}

void ReadJson(const Json& json, std::int16_t& value) {
  ReadWhole(json, value);
}

void ReadJson(const Json& json, std::int32_t& value) {
  ReadWhole(json, value);
}

void ReadJson(const Json& json, double& value) {
  value = 0.0;
  if (json.IsNull()) return;
  if (!json.IsNumber()) Refuse(json, "a number");
  value = json.Number();
}

// What is left out is told from 0 here, for a handicap of 0 is one.
void ReadJson(const Json& json, std::optional<double>& value) {
  value.reset();
  if (json.IsNull()) return;
  double number = 0.0;
  ReadJson(json, number);
  value = number;
}

void ReadJson(const Json& json, std::string& value) {
  value.clear();
  if (json.IsNull()) return;
  if (!json.IsText()) Refuse(json, "a text");
  value = json.Text();
}

void ReadJson(const Json& json, Date& value) {
  // The zero date, 30 December 1899, is what stands for no date in the component.
  value = Date();
  if (json.IsNull()) return;
  const std::string expected = "a date (\"yyyy-mm-dd\" or \"yyyy-mm-ddThh:mm:ss\")";
  if (!json.IsText()) Refuse(json, expected);
  const std::optional<Date> date = Date::FromIso(json.Text());
  if (!date) Refuse(json, expected);
  value = *date;
}

void RequireMembers(const Json& json, const std::string& what, std::initializer_list<const char*> names) {
  if (!json.IsObject()) Refuse(json, "an object of " + what);
  for (std::size_t place = 0; place < json.size(); ++place) {
    const std::string& member = json.NameAt(place);
    if (std::find(names.begin(), names.end(), member) == names.end()) {
      throw RpcError(RpcCode::InvalidParams, what + " have no member \"" + member + "\"");
    }
  }
}

void ReadJson(const Json& json, std::shared_ptr<HandiCalcSettings>& value) {
  value.reset();
  if (json.IsNull()) return;
  HandiCalcSettings settings;
  ReadJson(json, settings);
  // An object of its own: whoever calls keeps nothing of it, so nothing is shared.
  value = std::make_shared<HandiCalcSettings>(settings);
}

Json WriteJson(bool value) {
  return value;
}

Json WriteJson(std::int16_t value) {
  return value;
}

Json WriteJson(std::int32_t value) {
  return value;
}

// An error, and not null: a caller would take null for 0.
Json WriteJson(double value) {
  if (std::isfinite(value)) return value;
  throw Error(ErrorNumber::Overflow, "TaviMembership", "Overflow: the result is no number or infinite");
}

Json WriteJson(const std::string& value) {
  return value;
}

Json WriteJson(const std::vector<std::string>& value) {
  return value;
}

Json WriteJson(const std::vector<EBUMembershipDetails>& value) {
  Json list = Json::Array();
  for (const EBUMembershipDetails& details : value) list.Add(WriteJson(details));
  return list;
}

Json WriteJson(const MatchList& value) {
  return value.Numbers;
}

}  // namespace tavi::host
