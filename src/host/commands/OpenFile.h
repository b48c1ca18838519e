#pragma once

#include <memory>
#include <string>

#include "access/catalog/Database.h"
#include "host/commands/Context.h"
#include "platform/ado/Provider.h"

namespace tavi::host {

/// Opens an Access file for reading only: neither it nor its folder is changed. Notes of the engine go to standard
/// error. Raises the engine's error, which names the file, when it is no database that can be read.
std::unique_ptr<access::Database> OpenToRead(const Context& context, const std::string& file);

/// Connects to an Access file, whatever characters its path holds. Raises the provider's errors.
std::unique_ptr<ado::Connection> Connect(const Context& context, const std::string& file);

}  // namespace tavi::host
