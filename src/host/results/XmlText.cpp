#include "host/results/Xml.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>

#include "host/text/PathText.h"
#include "platform/values/CodePages.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

// From the bytes of a file to UTF-8. What decides, in this order: a byte-order mark, the zero byte in the first
// character of UTF-16, the XML declaration, and without all of them UTF-8. The order is that of reliability: marks are
// written by programs that know, declarations are often copied from another file.
//
//   FF FE ...         UTF-16, low byte first (FF FE 00 00 would be UTF-32, which is refused by name)
//   FE FF ...         UTF-16, high byte first
//   3C 00 or 00 3C    the "<" of UTF-16 without a mark
//   EF BB BF ...      UTF-8; the mark is dropped
//
// A file that is not what it says is refused with the line of the first wrong byte; one that says nothing, and is no
// UTF-8, is taken for windows-1252, the encoding of older programs, in which any bytes are text.
namespace tavi::host {
namespace {

// With its length, since there are zeros in it.
constexpr std::string_view kUtf32Mark("\xFF\xFE\0\0", 4);

[[noreturn]] void Refuse(const std::string& fileName, std::size_t line, const std::string& reason) {
  throw Error(ErrorNumber::InvalidArgument, "tavi", fileName + ":" + std::to_string(line) + ": " + reason);
}

/// Codes of windows-1252 that have no character become replacement characters, not control characters, which XML
/// forbids.
std::string FromWindows1252(std::string_view bytes) {
  constexpr char32_t kFirstControl = 0x80;
  constexpr char32_t kLastControl = 0x9F;
  std::u32string characters;
  characters.reserve(bytes.size());
  for (const char byte : bytes) {
    const char32_t character = CharacterOfByte(static_cast<std::uint8_t>(byte), kWesternCodePage);
    const bool isOpen = character >= kFirstControl && character <= kLastControl;
    characters.push_back(isOpen ? U'\uFFFD' : character);
  }
  return FromCodePoints(characters);
}

/// A half of a surrogate pair alone is kept as Text.h does; an odd last byte means that the file was cut off.
std::string FromUtf16Bytes(std::string_view bytes, bool bigEndian, const std::string& fileName) {
  if (bytes.size() % 2 != 0) {
    Refuse(fileName, 1, "the file is UTF-16 but ends in the middle of a character; expected the whole file");
  }
  std::u16string units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    units.push_back(static_cast<char16_t>(bigEndian ? first << 8U | second : second << 8U | first));
  }
  return FromUtf16(units);
}

/// Length of the well-formed UTF-8 sequence at a place, 0 when there is none.
std::size_t Utf8SequenceLength(std::string_view bytes, std::size_t at) {
  const auto lead = static_cast<unsigned char>(bytes[at]);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xC2 && lead < 0xE0   ? 2
                             : lead >= 0xE0 && lead < 0xF0 ? 3
                             : lead >= 0xF0 && lead < 0xF5 ? 4
                                                           : 0;
  if (length == 0 || at + length > bytes.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(bytes[at + i]) & 0xC0U) != 0x80U) return 0;
  }
  const auto second = static_cast<unsigned char>(bytes[at + 1]);
  // A longer form than needed, a half of a surrogate pair, and what lies beyond the last character: in a file that came
  // from elsewhere these are wrong, whereas texts of a club's own file may hold such halves (Text.h).
  const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
  const bool outside = (lead == 0xED && second >= 0xA0) || (lead == 0xF4 && second >= 0x90);
  return overlong || outside ? 0 : length;
}

/// Where the bytes stop being UTF-8; nothing when they are UTF-8 throughout.
std::optional<std::size_t> FirstInvalidUtf8(std::string_view bytes) {
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t length = Utf8SequenceLength(bytes, at);
    if (length == 0) return at;
    at += length;
  }
  return std::nullopt;
}

/// The encoding that the XML declaration names, in lower case; empty when it names none.
/// The declaration is ASCII in every encoding that is asked for here, so that it can be read before the text is
/// decoded.
std::string DeclaredEncoding(std::string_view bytes) {
  if (!bytes.starts_with("<?xml")) return {};
  const std::string_view declaration = bytes.substr(0, bytes.find("?>"));
  const std::size_t name = declaration.find("encoding");
  if (name == std::string_view::npos) return {};
  const std::size_t open = declaration.find_first_of("\"'", name);
  if (open == std::string_view::npos) return {};
  const std::size_t close = declaration.find(declaration[open], open + 1);
  if (close == std::string_view::npos) return {};
  return LowerCase(declaration.substr(open + 1, close - open - 1));
}

/// Whether two bytes are a plain letter or "<" of UTF-16: one of them is zero. The order of the bytes is passed back.
bool LooksLikeUtf16(std::string_view bytes, bool& bigEndian) {
  if (bytes.size() < 2 || (bytes[0] == '\0') == (bytes[1] == '\0')) return false;
  bigEndian = bytes[0] == '\0';
  return true;
}

/// Refuses a file whose bytes are not in the encoding that it says, or that is not read here.
[[noreturn]] void RefuseEncoding(const std::string& fileName, const std::string& declared) {
  if (declared.starts_with("utf-16") || declared.starts_with("utf16")) {
    Refuse(fileName, 1,
           "the file says that it is " + UpperCase(declared) +
               ", but its characters are of one byte each; expected the true encoding in its first line (most likely "
               "UTF-8), or UTF-16 throughout");
  }
  Refuse(fileName, 1,
         "the encoding \"" + declared + "\" is not read here; expected UTF-8, UTF-16, ISO-8859-1 or windows-1252");
}

/// Whatever of these a file calls itself, windows-1252 reads it rightly: it has letters where ISO 8859-1 has only
/// control characters, the curly apostrophe among them.
bool IsLatin(const std::string& encoding) {
  static constexpr std::array kNames = {"iso-8859-1", "iso_8859-1", "latin1", "latin-1", "windows-1252", "cp1252"};
  return std::find(kNames.begin(), kNames.end(), encoding) != kNames.end();
}

}  // namespace

std::string ReadWholeFile(const std::string& path) {
  const auto refuse = [&path](const std::string& reason) {
    throw Error(ErrorNumber::InvalidArgument, "tavi", path + ": " + reason);
  };
  const std::filesystem::path file = PathOf(path);
  std::error_code code;
  const auto status = std::filesystem::status(file, code);
  if (!std::filesystem::exists(status)) refuse("there is no such file");
  if (std::filesystem::is_directory(status)) refuse("is a folder; a file was expected");
  // Before reading, so that a huge file costs nothing. A pipe has no size and is bounded while it is read.
  if (std::filesystem::is_regular_file(status) && std::filesystem::file_size(file, code) > kMaximumResultFileBytes) {
    refuse("is larger than 32 MiB; a file of this kind is not so large");
  }
  std::ifstream stream(file, std::ios::binary);
  if (!stream) refuse("cannot be opened for reading");
  std::string bytes;
  std::array<char, 65536> buffer{};
  // The last piece is shorter than the buffer: reading "fails" then, and has read something all the same.
  while (stream.read(buffer.data(), buffer.size()) || stream.gcount() > 0) {
    bytes.append(buffer.data(), static_cast<std::size_t>(stream.gcount()));
    if (bytes.size() > kMaximumResultFileBytes) refuse("is larger than 32 MiB; a file of this kind is not so large");
  }
  if (stream.bad()) refuse("cannot be read to its end");
  return bytes;
}

std::string DecodeXml(std::string_view bytes, const std::string& fileName) {
  // Before UTF-16, whose mark is its beginning.
  if (bytes.starts_with(kUtf32Mark)) {
    Refuse(fileName, 1, "the file is UTF-32 by its byte-order mark, which is not read here; expected UTF-8");
  }
  if (bytes.starts_with("\xFF\xFE")) return FromUtf16Bytes(bytes.substr(2), false, fileName);
  if (bytes.starts_with("\xFE\xFF")) return FromUtf16Bytes(bytes.substr(2), true, fileName);
  bool bigEndian = false;
  if (LooksLikeUtf16(bytes, bigEndian)) return FromUtf16Bytes(bytes, bigEndian, fileName);
  const bool marked = bytes.starts_with("\xEF\xBB\xBF");
  if (marked) bytes.remove_prefix(3);
  const std::string declared = DeclaredEncoding(bytes);
  // A mark is believed more than a declaration: an editor that saved the file anew wrote the former and left the
  // latter.
  if (!marked && IsLatin(declared)) return FromWindows1252(bytes);
  const bool isUtf8 = marked || declared.empty() || declared == "utf-8" || declared == "utf8" || declared == "us-ascii";
  if (!isUtf8) RefuseEncoding(fileName, declared);
  if (const auto invalid = FirstInvalidUtf8(bytes)) {
    if (!marked && declared.empty()) return FromWindows1252(bytes);
    Refuse(fileName, LineOf(bytes, *invalid),
           "the file says " + std::string(marked ? "by its byte-order mark " : "") + "that it is " +
               (marked ? "UTF-8" : UpperCase(declared)) +
               ", but a byte here is not; expected UTF-8 throughout, or its true encoding in its first line");
  }
  return std::string(bytes);
}

}  // namespace tavi::host
