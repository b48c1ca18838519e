#pragma once

#include "host/commands/Context.h"

namespace tavi::host {

/// `tavi info`: where the file is, its size, what is in it.
int ShowInfo(const Context& context);

}  // namespace tavi::host
