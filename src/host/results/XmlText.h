#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavi::host {

/// The largest result file that is read, in bytes.
inline constexpr std::size_t kMaximumResultFileBytes = std::size_t{32} << 20U;
/// Reads a whole file. Raises InvalidArgument that names the file when it is missing, a folder, unreadable or too
/// large.
std::string ReadWholeFile(const std::string& path);

/// The UTF-8 text of an XML document's bytes: the byte-order mark decides, then the zero byte in a first character of
/// UTF-16, then the declaration, then UTF-8. What calls
/// itself ISO 8859-1 is read as windows-1252 (which it often truly is); a document without a mark and a declaration
/// that is not UTF-8 likewise. Raises InvalidArgument ("FILE:LINE: ...") when the bytes are not in the declared
/// encoding or the encoding is unknown.
std::string DecodeXml(std::string_view bytes, const std::string& fileName);

}  // namespace tavi::host
