#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "facade/MembershipDatabase.h"

/// The component's types as JSON. Objects of the component (settings, handicaps, rows of the governing body's list) are
/// JSON objects with their properties as members; dates are ISO 8601 texts.
namespace tavi::host {

/// Members keep the order in which they were put in, so that replies read as the documentation does.
using Json = nlohmann::ordered_json;

/// Reading: raise RpcError (InvalidParams) with what was expected when the JSON value is of another type or out of
/// range. Null stands for what was left out: zero, false, the empty text, the zero date, no object.
void ReadJson(const Json& json, bool& value);
void ReadJson(const Json& json, std::int16_t& value);
void ReadJson(const Json& json, std::int32_t& value);
void ReadJson(const Json& json, double& value);
void ReadJson(const Json& json, std::optional<double>& value);
void ReadJson(const Json& json, std::string& value);
void ReadJson(const Json& json, Date& value);
/// Members that are missing or null have the values of new settings; unknown members are refused.
void ReadJson(const Json& json, std::shared_ptr<HandiCalcSettings>& value);
void ReadJson(const Json& json, HandiCalcSettings& value);

Json WriteJson(bool value);
Json WriteJson(std::int16_t value);
Json WriteJson(std::int32_t value);
/// Raises Error (Overflow) for what JSON has no number for: infinite, or no number.
Json WriteJson(double value);
Json WriteJson(const std::string& value);
Json WriteJson(const std::vector<std::string>& value);
Json WriteJson(const HandiCalcSettings& value);
Json WriteJson(const Handicaps& value);
Json WriteJson(const EBUMembershipDetails& value);
Json WriteJson(const std::vector<EBUMembershipDetails>& value);
/// The numbers alone; their lower bound is passed back beside them.
Json WriteJson(const MatchList& value);

/// What the types are called in the list of operations.
template <typename Value>
constexpr const char* TypeWord() {
  if constexpr (std::is_void_v<Value>)
    return "nothing";
  else if constexpr (std::is_same_v<Value, bool>)
    return "boolean";
  else if constexpr (std::is_same_v<Value, std::int16_t>)
    return "16-bit";
  else if constexpr (std::is_same_v<Value, std::int32_t>)
    return "32-bit";
  else if constexpr (std::is_same_v<Value, double> || std::is_same_v<Value, std::optional<double>>)
    return "double";
  else if constexpr (std::is_same_v<Value, std::string>)
    return "text";
  else if constexpr (std::is_same_v<Value, Date>)
    return "date";
  else if constexpr (std::is_same_v<Value, Handicaps>)
    return "Handicaps";
  else if constexpr (std::is_same_v<Value, MatchList>)
    return "list of 32-bit";
  else if constexpr (std::is_same_v<Value, std::vector<std::string>>)
    return "list of text";
  else if constexpr (std::is_same_v<Value, std::vector<EBUMembershipDetails>>)
    return "list of EBUMembershipDetails";
  else
    return "HandiCalcSettings";
}

}  // namespace tavi::host
