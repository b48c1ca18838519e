#include "host/rpc/Session.h"

#include <algorithm>

#include "host/rpc/Arguments.h"

// The objects of a caller, by number. Numbers are never given twice, so that a request for an object that was released
// cannot reach another one. The newest object's store serves all, as objects of one thread share it.
namespace tavi::host {

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
