#pragma once

#include <vector>

#include "host/rpc/Operation.h"

namespace tavi::host {

/// Every operation and property of the public classes, in the order of the header of MembershipDatabase. A new one is
/// one line in Operations.cpp.
std::vector<Operation> AllOperations();

}  // namespace tavi::host
