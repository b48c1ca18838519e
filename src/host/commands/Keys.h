#pragma once

#include "host/commands/Context.h"

namespace tavi::host {

/// `tavi keys`: reads lines "first<TAB>name" or "last<TAB>name" and writes the key of each name, a line each. The first
/// line of another form ends it with an error that tells its number.
int WriteKeys(const Context& context);

}  // namespace tavi::host
