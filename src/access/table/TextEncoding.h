#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/values/Value.h"

namespace tavi::access {

// Stored text (TEXT and MEMO values, names), between UTF-8 and the bytes of a Jet 4 file.
//
//   plain       UTF-16LE, no terminator
//   compressed  FF FE, then segments separated by single 00 bytes; the first segment holds one byte for each character
//               0001-00FF, the next one UTF-16LE, and so on in turn
//
// Example: "Hello"  plain  48 00 65 00 6C 00 6C 00 6F 00      compressed  FF FE 48 65 6C 6C 6F

/// The UTF-8 text of a stored value, of either form. A surrogate without its partner is kept (see Value.h); half a
/// character at the end is dropped.
[[nodiscard]] std::string DecodeText(std::span<const std::uint8_t> stored);
/// As DecodeText, for places where text is never compressed (names, fixed-length columns).
[[nodiscard]] std::string DecodePlainText(std::span<const std::uint8_t> stored);

/// The plain form, for the same places.
[[nodiscard]] Bytes EncodePlainText(std::string_view text);
/// True for a text that Access compresses where it may: at least 3 characters, all in 0001-00FF.
[[nodiscard]] bool IsCompressible(std::string_view text);
/// False for a text that begins with U+FEFF, whose bytes are the mark of the compressed form, and holds a NUL or
/// another character with a 00 byte in it (U+0100), by which that form switches: it could not be read back.
[[nodiscard]] bool HasStoredForm(std::string_view text);
/// The compressed form when `compress` is set and the text IsCompressible, else the plain one; a text that begins with
/// U+FEFF gets the compressed one with switches of mode. The text HasStoredForm.
[[nodiscard]] Bytes EncodeText(std::string_view text, bool compress);
/// Number of UTF-16 units of a text: what the length of a column limits.
[[nodiscard]] std::size_t Utf16Length(std::string_view text);

}  // namespace tavi::access
