#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/rpc/Operations.h"

namespace tavi::host {

/// A value for each argument of an operation, from the parameters of a request: an object (by name), an array (by
/// position) or null (none). What is left out, or null, gets its standard value. An array may give all arguments, or,
/// when that fits better, only those that are not passed back. Raises RpcError (InvalidParams) for an argument that is
/// missing or not known.
std::vector<Json> ArgumentsOf(const Operation& operation, const Json& params);

/// The objects of one caller and the operations on them. Object 1 is there from the start. Used on one thread, as the
/// objects are.
///
/// Beside the component's operations there are "new" (another object; its number is returned), "release" (ends the
/// object that the request is for) and "operations" (lists all operations with their arguments).
class Session {
 public:
  using MakeClub = std::function<std::unique_ptr<MembershipDatabase>()>;

  explicit Session(MakeClub makeClub);

  /// Carries out one call. `params` is an object (arguments by name), an array (by position) or null; `object` says on
  /// which object. The bare name of a property reads it, as "get_" before it does. Returns the reply: "return" and the
  /// arguments that are passed back. Raises RpcError for a method, object or argument that is not there and for values
  /// of a wrong type; tavi::Error is the component's own.
  Json Call(const std::string& method, const Json& params, std::int32_t object);
  /// Closes the file at the end of the calls, which raises what the objects' own end would hide.
  void Close();

 private:
  [[nodiscard]] MembershipDatabase& ObjectOf(std::int32_t number) const;
  Json MakeAnother();
  Json Release(std::int32_t number);
  [[nodiscard]] Json ListOperations() const;

  MakeClub makeClub_;
  std::map<std::string, const Operation*, std::less<>> operations_;
  std::map<std::int32_t, std::unique_ptr<MembershipDatabase>> objects_;
  std::int32_t lastObject_ = 0;
};

}  // namespace tavi::host
