#pragma once

#include <string_view>

namespace tavi {

/// Appends a line (the message, carriage return, line feed) to the diagnostics log "C:\Diagnostics\Tallyman.txt". The
/// folder is never created: creating it is how a user switches the log on. Never raises an error; what cannot be
/// written is dropped.
void WriteDiagnostic(std::string_view message) noexcept;

}  // namespace tavi
