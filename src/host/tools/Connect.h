#pragma once

#include <memory>
#include <string>

#include "host/commands/Context.h"
#include "platform/ado/Provider.h"

namespace tavi::host {

/// Connects to an Access file, whatever characters its path holds. Raises the provider's errors.
std::unique_ptr<ado::Connection> Connect(const Context& context, const std::string& file);

}  // namespace tavi::host
