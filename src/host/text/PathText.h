#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace tavi::host {

/// The path that a text names. Texts are UTF-8 on every system.
[[nodiscard]] std::filesystem::path PathOf(const std::string& text);

/// A path as text, the way people of this system write it.
[[nodiscard]] std::string TextOf(const std::filesystem::path& path);

/// The system's words for a failure of a file operation.
[[nodiscard]] std::string ReasonOf(const std::error_code& failure);

}  // namespace tavi::host
