#pragma once

#include <string>

#include "host/commands/Context.h"

namespace tavi::host {

/// `tavi compact`: lays an Access file out anew in its place and keeps the old one beside it (see
/// access/catalog/Compact.h). An empty name means the club's file.
int Compact(const Context& context, const std::string& file);

}  // namespace tavi::host
