#include "host/rpc/JsonValues.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/rpc/RpcError.h"

namespace tavi::host {
namespace {

constexpr std::size_t kShownCharacters = 40;

[[noreturn]] void Refuse(const Json& json, const std::string& expected) {
  std::string found = json.dump(-1, ' ', true, Json::error_handler_t::replace);
  if (found.size() > kShownCharacters) found = found.substr(0, kShownCharacters) + "...";
  throw RpcError(RpcCode::InvalidParams, expected + " is expected, not " + found);
}

template <typename Integer>
void ReadWhole(const Json& json, Integer& value) {
  constexpr auto kLeast = std::numeric_limits<Integer>::min();
  constexpr auto kMost = std::numeric_limits<Integer>::max();
  const std::string expected = "a whole number from " + std::to_string(kLeast) + " to " + std::to_string(kMost);
  value = 0;
  if (json.is_null()) return;
  if (!json.is_number()) Refuse(json, expected);
  // Numbers beyond 64 bits come as floating-point ones.
  const auto number = json.get<double>();
  if (std::trunc(number) != number || number < kLeast || number > kMost) Refuse(json, expected);
  value = static_cast<Integer>(number);
}

}  // namespace

void ReadJson(const Json& json, bool& value) {
  value = false;
  if (json.is_null()) return;
  if (!json.is_boolean()) Refuse(json, "true or false");
  value = json.get<bool>();
}

void ReadJson(const Json& json, std::int16_t& value) {
  ReadWhole(json, value);
}

void ReadJson(const Json& json, std::int32_t& value) {
  ReadWhole(json, value);
}

void ReadJson(const Json& json, double& value) {
  value = 0.0;
  if (json.is_null()) return;
  if (!json.is_number()) Refuse(json, "a number");
  value = json.get<double>();
}

void ReadJson(const Json& json, std::optional<double>& value) {
  value.reset();
  if (json.is_null()) return;
  double number = 0.0;
  ReadJson(json, number);
  value = number;
}

void ReadJson(const Json& json, std::string& value) {
  value.clear();
  if (json.is_null()) return;
  if (!json.is_string()) Refuse(json, "a text");
  value = json.get<std::string>();
}

void ReadJson(const Json& json, Date& value) {
  value = Date();
  if (json.is_null()) return;
  const std::string expected = "a date (\"yyyy-mm-dd\" or \"yyyy-mm-ddThh:mm:ss\")";
  if (!json.is_string()) Refuse(json, expected);
  const std::optional<Date> date = Date::FromIso(json.get<std::string>());
  if (!date) Refuse(json, expected);
  value = *date;
}

void RequireMembers(const Json& json, const std::string& what, std::initializer_list<const char*> names) {
  if (!json.is_object()) Refuse(json, "an object of " + what);
  for (const auto& member : json.items()) {
    const auto isMember = [&](const char* name) { return member.key() == name; };
    if (std::none_of(names.begin(), names.end(), isMember)) {
      throw RpcError(RpcCode::InvalidParams, what + " have no member \"" + member.key() + "\"");
    }
  }
}

void ReadJson(const Json& json, std::shared_ptr<HandiCalcSettings>& value) {
  value.reset();
  if (json.is_null()) return;
  HandiCalcSettings settings;
  ReadJson(json, settings);
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
  Json list = Json::array();
  for (const EBUMembershipDetails& details : value) list.push_back(WriteJson(details));
  return list;
}

Json WriteJson(const MatchList& value) {
  return value.Numbers;
}

}  // namespace tavi::host
