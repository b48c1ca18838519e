#include "host/rpc/Session.h"

#include <algorithm>
#include <string_view>

// The objects of a caller, by number. Numbers are never given twice, so that a request for an object that was released
// cannot reach another one. The newest object's store serves all, as objects of one thread share it.
//
// From the parameters of a request to one value for each argument. A value that was not given is marked apart from null
// (Json::Nothing), for null may be meant. Both get the standard value where there is one; where there is none, only an
// object may be null, which stands for no object.
//
// By position two ways of counting are taken, because arguments that are passed back are seldom wanted as input:
// GetEBUNoAndNames is called with a number and three names, which are only passed back, or with the number alone.
namespace tavi::host {
namespace {

/// The call as a message shows it, with brackets around what may be left out: "GetHandicap(MemberID)".
std::string Signature(const Operation& operation) {
  std::string text = std::string(operation.name) + "(";
  for (const Argument& argument : operation.arguments) {
    if (&argument != &operation.arguments.front()) text += ", ";
    const bool isNeeded = argument.standard == nullptr;
    text += isNeeded ? argument.name : "[" + std::string(argument.name) + "]";
  }
  return text + ")";
}

[[noreturn]] void Refuse(const Operation& operation, const std::string& problem) {
  throw RpcError(RpcCode::InvalidParams, problem + "; the call is " + Signature(operation));
}

/// Puts standard values where nothing was given.
void Complete(const Operation& operation, std::vector<Json>& values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    const Argument& argument = operation.arguments[i];
    const bool isMissing = values[i].IsNothing();
    if (!isMissing && !values[i].IsNull()) continue;
    if (argument.standard != nullptr) {
      values[i] = Json::Parse(argument.standard);
    } else if (isMissing || argument.type != std::string_view("HandiCalcSettings")) {  // an object may be none
      Refuse(operation, "\"" + std::string(argument.name) + "\" is missing");
    }
  }
}

/// Room for each argument, with the mark that it was not given.
std::vector<Json> NothingGiven(const Operation& operation) {
  return std::vector<Json>(operation.arguments.size(), Json::Nothing());
}

/// The order does not matter. A name that is none is refused, because a slip of the pen would pass for a standard
/// value.
std::vector<Json> ByName(const Operation& operation, const Json& params) {
  std::vector<Json> values = NothingGiven(operation);
  for (std::size_t place = 0; place < params.size(); ++place) {
    const std::string& name = params.NameAt(place);
    const auto isMeant = [&](const Argument& argument) { return argument.name == name; };
    auto found = std::find_if(operation.arguments.begin(), operation.arguments.end(), isMeant);
    // The new value of a property goes by any name.
    if (found == operation.arguments.end() && operation.takesValue && values.back().IsNothing()) {
      found = std::prev(operation.arguments.end());
    }
    if (found == operation.arguments.end()) Refuse(operation, "\"" + name + "\" is no argument");
    values[static_cast<std::size_t>(found - operation.arguments.begin())] = params[place];
  }
  return values;
}

/// True when so many values, put to the arguments from the first on, leave one without a value that needs one.
bool LeavesGaps(const Operation& operation, std::size_t given) {
  for (std::size_t i = given; i < operation.arguments.size(); ++i) {
    if (operation.arguments[i].standard == nullptr) return true;
  }
  return false;
}

/// All from the first one on, unless that leaves an argument without a value that needs one: then those that are passed
/// back are stepped over.
std::vector<Json> ByPosition(const Operation& operation, const Json& params) {
  std::vector<Json> values = NothingGiven(operation);
  if (params.size() > values.size()) {
    Refuse(operation, std::to_string(params.size()) + " arguments are too many");
  }
  const bool onlyThoseGiven = LeavesGaps(operation, params.size());
  std::size_t next = 0;
  for (std::size_t i = 0; i < values.size() && next < params.size(); ++i) {
    if (onlyThoseGiven && operation.arguments[i].isPassedBack) continue;
    values[i] = params[next++];
  }
  return values;
}

}  // namespace

std::vector<Json> ArgumentsOf(const Operation& operation, const Json& params) {
  std::vector<Json> values = NothingGiven(operation);
  if (params.IsObject()) values = ByName(operation, params);
  if (params.IsArray()) values = ByPosition(operation, params);
  Complete(operation, values);
  return values;
}

Session::Session(MakeClub makeClub) : makeClub_(std::move(makeClub)) {
  for (const Operation& operation : AllOperations()) operations_.emplace(operation.name, &operation);
  MakeAnother();
}

Json Session::Call(const std::string& method, const Json& params, std::int32_t object) {
  // The session's own, before the component's: no operation of those is called so.
  if (method == "new" || method == "release" || method == "operations") {
    if (!params.empty()) throw RpcError(RpcCode::InvalidParams, "\"" + method + "\" takes no arguments");
    if (method == "new") return MakeAnother();
    return method == "release" ? Release(object) : ListOperations();
  }
  auto found = operations_.find(method);
  // Reading is what a bare property means; writing has to be said.
  if (found == operations_.end()) found = operations_.find("get_" + method);
  if (found == operations_.end()) {
    throw RpcError(RpcCode::MethodNotFound,
                   "There is no operation \"" + method + "\"; \"operations\" lists those that there are");
  }
  // The object before the arguments: without it there is no call whose arguments could be wrong.
  MembershipDatabase& club = ObjectOf(object);
  const Operation& operation = *found->second;
  return operation.call(operation, club, ArgumentsOf(operation, params));
}

MembershipDatabase& Session::ObjectOf(std::int32_t number) const {
  const auto found = objects_.find(number);
  if (found != objects_.end()) return *found->second;
  throw RpcError(RpcCode::InvalidParams, "There is no object " + std::to_string(number) + "; \"new\" makes one");
}

Json Session::MakeAnother() {
  // Counted only when it has been made.
  objects_.emplace(lastObject_ + 1, makeClub_());
  ++lastObject_;
  return {{"return", lastObject_}};
}

Json Session::Release(std::int32_t number) {
  // Refuses a number that is none.
  static_cast<void>(ObjectOf(number));
  objects_.erase(number);
  return {{"return", nullptr}};
}

void Session::Close() {
  // Any of them will do: they share one store.
  if (!objects_.empty()) objects_.begin()->second->CloseDatabase();
}

Json Session::ListOperations() const {
  Json list = Json::Array();
  for (const Operation& operation : AllOperations()) {
    Json arguments = Json::Array();
    for (const Argument& argument : operation.arguments) {
      Json entry = {{"name", argument.name}, {"type", argument.type}};
      if (argument.isPassedBack) entry["passedBack"] = true;
      if (argument.standard != nullptr) entry["optional"] = true;
      arguments.Add(std::move(entry));
    }
    list.Add({{"name", operation.name}, {"arguments", std::move(arguments)}, {"returns", operation.result}});
  }
  return {{"return", std::move(list)}};
}

}  // namespace tavi::host
