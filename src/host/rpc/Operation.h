#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/rpc/JsonValues.h"
#include "host/rpc/RpcError.h"

namespace tavi::host {

/// An argument as it stands in the table of operations: its name and, when it may be left out, what it is then.
struct ArgumentName {
  ArgumentName(const char* argument) : name(argument) {}  // NOLINT: a plain name is an argument that is needed
  ArgumentName(const char* argument, Json whenLeftOut) : name(argument), standard(std::move(whenLeftOut)) {}

  const char* name;
  std::optional<Json> standard;
};

/// An argument of an operation with what its type tells.
struct Argument {
  std::string name;
  std::string type;
  bool passedBack = false;
  std::optional<Json> standard;  ///< its value when it is left out; none: it is needed
};

/// One operation of the component, callable with JSON.
struct Operation {
  std::string name;
  std::vector<Argument> arguments;
  std::string result;       ///< the type's word
  bool takesValue = false;  ///< the last argument is the new value of a property, whatever it is called
  /// Calls it on an object with a value for each argument, and gives the reply: "return" and what is passed back.
  /// Raises RpcError (InvalidParams) for a value of a wrong type, and what the operation raises.
  std::function<Json(const Operation&, MembershipDatabase&, const std::vector<Json>&)> call;
};

/// A parameter that the operation writes into.
template <typename Parameter>
inline constexpr bool kIsPassedBack =
    std::is_lvalue_reference_v<Parameter> && !std::is_const_v<std::remove_reference_t<Parameter>>;

template <typename Parameter>
std::remove_cvref_t<Parameter> ReadArgument(const Argument& argument, const Json& json) {
  try {
    std::remove_cvref_t<Parameter> value{};
    ReadJson(json, value);
    return value;
  } catch (const RpcError& problem) {
    throw RpcError(problem.Code(), argument.name + ": " + problem.what());
  }
}

/// Calls `function(object, arguments...)` with values read from JSON, and collects what comes back.
template <typename Result, typename... Parameters, typename Function, std::size_t... Positions>
Json CallWithJson(const Operation& operation, MembershipDatabase& object, const Function& function,
                  const std::vector<Json>& values, std::index_sequence<Positions...> /*positions*/) {
  std::tuple<std::remove_cvref_t<Parameters>...> arguments{
      ReadArgument<Parameters>(operation.arguments[Positions], values[Positions])...};
  Json reply = Json::object();
  if constexpr (std::is_void_v<Result>) {
    function(object, std::get<Positions>(arguments)...);
    reply["return"] = nullptr;
  } else {
    const Result result = function(object, std::get<Positions>(arguments)...);
    reply["return"] = WriteJson(result);
    if constexpr (std::is_same_v<Result, MatchList>) reply["LowerBound"] = result.LowerBound;
  }
  [[maybe_unused]] const auto passBack = [&]<typename Parameter>(const std::type_identity<Parameter>&,
                                                                 std::size_t position, const auto& value) {
    if constexpr (kIsPassedBack<Parameter>) reply[operation.arguments[position].name] = WriteJson(value);
  };
  (passBack(std::type_identity<Parameters>{}, Positions, std::get<Positions>(arguments)), ...);
  return reply;
}

template <typename Result, typename... Parameters, typename Function>
Operation MakeOperation(std::string name, Function function, std::array<ArgumentName, sizeof...(Parameters)> names) {
  Operation operation;
  operation.name = std::move(name);
  operation.result = TypeWord<std::remove_cvref_t<Result>>();
  std::size_t position = 0;
  [[maybe_unused]] const auto add = [&]<typename Parameter>(const std::type_identity<Parameter>&) {
    ArgumentName& argument = names.at(position++);
    if (kIsPassedBack<Parameter> && !argument.standard) argument.standard = Json();
    operation.arguments.push_back({argument.name, TypeWord<std::remove_cvref_t<Parameter>>(), kIsPassedBack<Parameter>,
                                   std::move(argument.standard)});
  };
  (add(std::type_identity<Parameters>{}), ...);
  operation.call = [function](const Operation& self, MembershipDatabase& object, const std::vector<Json>& values) {
    return CallWithJson<std::remove_cvref_t<Result>, Parameters...>(self, object, function, values,
                                                                    std::index_sequence_for<Parameters...>{});
  };
  return operation;
}

/// An operation under the name of its method, with the names of its arguments in their order.
template <typename Result, typename... Parameters, typename... Names>
Operation Method(const char* name, Result (MembershipDatabase::*method)(Parameters...), Names... names) {
  static_assert(sizeof...(Names) == sizeof...(Parameters), "each argument has a name");
  const auto call = [method](MembershipDatabase& object, auto&... arguments) -> Result {
    return (object.*method)(arguments...);
  };
  return MakeOperation<Result, Parameters...>(name, call, {ArgumentName(std::move(names))...});
}
template <typename Result, typename... Parameters, typename... Names>
Operation Method(const char* name, Result (MembershipDatabase::*method)(Parameters...) const, Names... names) {
  static_assert(sizeof...(Names) == sizeof...(Parameters), "each argument has a name");
  const auto call = [method](MembershipDatabase& object, auto&... arguments) -> Result {
    return (object.*method)(arguments...);
  };
  return MakeOperation<Result, Parameters...>(name, call, {ArgumentName(std::move(names))...});
}

/// Reading a property: "get_" before its name.
template <typename Getter, typename... Names>
Operation Get(const std::string& name, Getter getter, Names... names) {
  return Method(("get_" + name).c_str(), getter, std::move(names)...);
}

/// Writing a property: "put_" before its name; the last argument is the new value.
template <typename Setter, typename... Names>
Operation Put(const std::string& name, Setter setter, Names... names) {
  Operation operation = Method(("put_" + name).c_str(), setter, std::move(names)...);
  operation.takesValue = true;
  return operation;
}

}  // namespace tavi::host
