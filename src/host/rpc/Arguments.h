#pragma once

#include <vector>

#include "host/rpc/Operations.h"

namespace tavi::host {

/// A value for each argument of an operation, from the parameters of a request: an object (by name), an array (by
/// position) or null (none). What is left out, or null, gets its standard value. An array may give all arguments, or,
/// when that fits better, only those that are not passed back. Raises RpcError (InvalidParams) for an argument that is
/// missing or not known.
std::vector<Json> ArgumentsOf(const Operation& operation, const Json& params);

}  // namespace tavi::host
