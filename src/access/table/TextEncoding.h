#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavi::access {

/// How a text is stored: UTF-16LE, or "compressed" (FF FE, then one byte a character; a 00 byte switches to plain
/// UTF-16LE and back). Example: "Hello" compressed is FF FE 48 65 6C 6C 6F.

/// The UTF-8 text of stored bytes, either form. An odd last byte of a plain stretch is dropped.
std::string DecodeText(std::span<const std::uint8_t> bytes);
/// The stored form of a text: compressed when `mayCompress`, it has three characters at least, and all of them are
/// U+0001 to U+00FF; plain otherwise.
std::vector<std::uint8_t> EncodeText(std::string_view text, bool mayCompress);
/// The plain form.
std::vector<std::uint8_t> EncodePlainText(std::string_view text);
/// The number of UTF-16 units of a text: what Access counts as characters.
std::size_t StoredLength(std::string_view text);

}  // namespace tavi::access
