#pragma once

#include <string>

namespace tavi::host {

/// A number with as few digits as it takes to be read back as the same double; "null" for what JSON has no number for.
[[nodiscard]] std::string JsonNumber(double number);
/// A text in quotation marks, with escapes where they are needed, or with `isAscii` for all but ASCII characters. Bytes
/// that are no UTF-8 become U+FFFD.
[[nodiscard]] std::string JsonText(const std::string& text, bool isAscii);

}  // namespace tavi::host
