#include "access/table/TextEncoding.h"

#include <algorithm>

#include "access/file/Bytes.h"
#include "access/file/Format.h"
#include "platform/values/Text.h"

// Most texts are ASCII, which is the same in UTF-8 and in compressed form and is copied as it is; each function looks
// for that first, and goes by UTF-16 only when it has to. Compressed values with a switch of mode were seen in memos
// alone. They are read; written they are only for a text that begins with U+FEFF, which in the plain form would begin
// with the mark of the compressed one.

namespace tavi::access {

namespace {

namespace text_layout = format::text;

constexpr std::uint8_t kFirstNonAscii = 0x80;
constexpr std::size_t kUnitSize = 2;

using Stored = std::span<const std::uint8_t>;

/// FF FE is the mark of the compressed form here, not a byte-order mark.
bool IsMarkedCompressed(Stored stored) {
  return stored.size() >= text_layout::kCompressedMark.size() && stored[0] == text_layout::kCompressedMark[0] &&
         stored[1] == text_layout::kCompressedMark[1];
}

bool IsAscii(Stored bytes) {
  return std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte < kFirstNonAscii; });
}

bool IsAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char byte) { return static_cast<std::uint8_t>(byte) < kFirstNonAscii; });
}

/// An odd byte at the end is half a unit, and dropped.
void AppendUnits(std::u16string& units, Stored plain) {
  for (std::size_t i = 0; i + 1 < plain.size(); i += kUnitSize) {
    units.push_back(GetLittle<char16_t>(plain, i));
  }
}

/// The characters 80 to FF take two bytes in UTF-8: 110000xx 10xxxxxx.
void AppendLatin(std::string& text, Stored bytes) {
  for (const std::uint8_t byte : bytes) {
    if (byte < kFirstNonAscii) {
      text.push_back(static_cast<char>(byte));
    } else {
      text.push_back(static_cast<char>(0xC0U | (byte >> 6U)));
      text.push_back(static_cast<char>(0x80U | (byte & 0x3FU)));
    }
  }
}

bool BeginsWithTheMark(std::string_view text) {
  return text.starts_with("\uFEFF");
}

bool IsLatin(char16_t unit) {
  return unit >= 0x01 && unit <= 0xFF;
}

/// One byte of a plain segment that is 00 would end it.
bool FitsPlainSegment(char16_t unit) {
  return (unit & 0xFFU) != 0 && unit > 0xFF;
}

/// The compressed form with a switch wherever a character does not fit the mode: "\uFEFFab" is FF FE 00 FF FE 00 61 62.
/// The text has this form (HasStoredForm).
Bytes EncodeSegments(std::string_view text) {
  Bytes bytes(text_layout::kCompressedMark.begin(), text_layout::kCompressedMark.end());
  bool isCompressed = true;
  for (const char16_t unit : ToUtf16(text)) {
    if (isCompressed != IsLatin(unit)) {
      bytes.push_back(text_layout::kModeSwitch);
      isCompressed = !isCompressed;
    }
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFFU));
    if (!isCompressed) bytes.push_back(static_cast<std::uint8_t>(unit >> 8U));
  }
  return bytes;
}

/// In turn one byte for each character and two. A 00 ends a segment of either kind, which is why a plain one holds no
/// character with a 00 byte in it. The value may end in either mode.
std::string DecodeSegments(Stored body) {
  std::u16string units;
  bool isCompressed = true;
  while (!body.empty()) {
    const auto end = std::ranges::find(body, text_layout::kModeSwitch);
    const auto length = static_cast<std::size_t>(end - body.begin());
    const Stored segment = body.first(length);
    if (isCompressed) {
      units.append(segment.begin(), segment.end());
    } else {
      AppendUnits(units, segment);
    }
    if (end == body.end()) break;
    body = body.subspan(length + 1);
    isCompressed = !isCompressed;
  }
  return FromUtf16(units);
}

/// Without a switch there is one segment, whose characters are those of Latin-1.
std::string DecodeCompressed(Stored body) {
  if (std::ranges::find(body, text_layout::kModeSwitch) != body.end()) return DecodeSegments(body);
  if (IsAscii(body)) return {body.begin(), body.end()};
  std::string text;
  text.reserve(body.size() + body.size() / 2);
  AppendLatin(text, body);
  return text;
}

}  // namespace

std::string DecodeText(Stored stored) {
  if (IsMarkedCompressed(stored)) return DecodeCompressed(stored.subspan(text_layout::kCompressedMark.size()));
  return DecodePlainText(stored);
}

// One pass without a question for the usual case: what all units have in common tells at its end whether they were
// ASCII.
std::string DecodePlainText(Stored stored) {
  std::string text(stored.size() / kUnitSize, '\0');
  unsigned seen = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const unsigned unit = GetLittle<char16_t>(stored, i * kUnitSize);
    seen |= unit;
    text[i] = static_cast<char>(unit);
  }
  if (seen < kFirstNonAscii) return text;
  std::u16string units;
  units.reserve(text.size());
  AppendUnits(units, stored);
  return FromUtf16(units);
}

Bytes EncodePlainText(std::string_view text) {
  Bytes bytes;
  bytes.reserve(text.size() * kUnitSize);
  const auto put = [&bytes](char16_t unit) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFFU));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8U));
  };
  if (IsAscii(text)) {
    for (const char character : text) put(static_cast<char16_t>(character));
  } else {
    for (const char16_t unit : ToUtf16(text)) put(unit);
  }
  return bytes;
}

bool IsCompressible(std::string_view text) {
  if (IsAscii(text)) {
    // A NUL is the switch of mode in the compressed form, so a text with one stays plain.
    return text.size() >= text_layout::kMinimumCompressedLength && text.find('\0') == std::string_view::npos;
  }
  const std::u16string units = ToUtf16(text);
  return units.size() >= text_layout::kMinimumCompressedLength && std::ranges::all_of(units, IsLatin);
}

bool HasStoredForm(std::string_view text) {
  return !BeginsWithTheMark(text) ||
         std::ranges::all_of(ToUtf16(text), [](char16_t unit) { return IsLatin(unit) || FitsPlainSegment(unit); });
}

// All in one segment, or not compressed at all. Short texts stay plain, as the mark would take what is saved.
Bytes EncodeText(std::string_view text, bool compress) {
  if (BeginsWithTheMark(text)) return EncodeSegments(text);
  if (!compress || !IsCompressible(text)) return EncodePlainText(text);
  Bytes bytes(text_layout::kCompressedMark.begin(), text_layout::kCompressedMark.end());
  if (IsAscii(text)) {
    bytes.insert(bytes.end(), text.begin(), text.end());
  } else {
    for (const char16_t unit : ToUtf16(text)) bytes.push_back(static_cast<std::uint8_t>(unit));
  }
  return bytes;
}

// A character beyond FFFF counts twice, as Access counts it.
std::size_t Utf16Length(std::string_view text) {
  return IsAscii(text) ? text.size() : ToUtf16(text).size();
}

}  // namespace tavi::access
