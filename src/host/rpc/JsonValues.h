#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "facade/MembershipDatabase.h"
#include "host/json/Json.h"

/// The component's types as JSON. Objects of the component (settings, handicaps, rows of the governing body's list) are
/// JSON objects with their properties as members, which come from the table of operations; dates are ISO 8601 texts.
namespace tavi::host {

/// The error codes of JSON-RPC 2.0 itself.
enum class RpcCode : int {
  ParseError = -32700,
  InvalidRequest = -32600,
  MethodNotFound = -32601,
  InvalidParams = -32602,
  InternalError = -32603,
};

/// A request that cannot be carried out as it was put. (Errors of the component are tavi::Error.)
class RpcError : public std::runtime_error {
 public:
  RpcError(RpcCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
  [[nodiscard]] RpcCode Code() const { return code_; }

 private:
  RpcCode code_;
};

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

/// A value's JSON has these members and no others. Raises RpcError (InvalidParams).
void RequireMembers(const Json& json, const std::string& what, std::initializer_list<const char*> names);

/// Reads a member unless it is missing or null. Raises RpcError (InvalidParams), with the member's name, for one of a
/// wrong type.
template <typename Value>
void ReadMember(const Json& json, const std::string& name, Value& value) {
  const Json* found = json.Find(name);
  if (found == nullptr || found->IsNull()) return;
  try {
    ReadJson(*found, value);
  } catch (const RpcError& problem) {
    throw RpcError(problem.Code(), name + ": " + problem.what());
  }
}

}  // namespace tavi::host
