#pragma once

#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "host/rpc/JsonValues.h"
#include "host/rpc/RequestText.h"

namespace tavi::host {

struct Argument {
  const char* name;
  const char* type;  ///< the type's word
  bool isPassedBack;
  const char* standard;  ///< its value when it is left out, as JSON; null: it is needed
};

/// One operation of the component, callable with JSON.
struct Operation {
  const char* name;
  std::span<const Argument> arguments;
  const char* result;  ///< the type's word
  bool takesValue;     ///< the last argument is the new value of a property, whatever it is called
  /// Calls it on an object with a value for each argument, and gives the reply: "return" and what is passed back.
  /// Raises RpcError (InvalidParams) for a value of a wrong type, and what the operation raises.
  Json (*call)(const Operation& self, MembershipDatabase& object, const std::vector<Json>& given);
};

/// Every operation and property of the public classes, in the order of their table, of which the definitions are made
/// (src/facade/operations).
std::span<const Operation> AllOperations();

// --- What the definitions are written with ---------------------------------------------------------------------------

template <typename Value>
Value ReadArgument(const Operation& self, const std::vector<Json>& given, std::size_t position) {
  try {
    Value value{};
    ReadJson(given[position], value);
    return value;
  } catch (const RpcError& problem) {
    throw RpcError(problem.Code(), self.arguments[position].name + (": " + std::string(problem.what())));
  }
}

/// The reply of an operation that returns nothing.
inline Json Reply() {
  return {{"return", nullptr}};
}

template <typename Result>
Json Reply(const Result& result) {
  Json reply = Json::Object();
  reply["return"] = WriteJson(result);
  if constexpr (std::is_same_v<Result, MatchList>) reply["LowerBound"] = result.LowerBound;
  return reply;
}

}  // namespace tavi::host
