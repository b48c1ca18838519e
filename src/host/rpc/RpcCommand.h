#pragma once

#include "host/commands/Context.h"

namespace tavi::host {

/// `tavi rpc`: serves JSON-RPC on standard input and output until the input ends; then all objects end and the file is
/// closed. With a club's folder named, every object starts with it.
int RunRpc(const Context& context);

}  // namespace tavi::host
