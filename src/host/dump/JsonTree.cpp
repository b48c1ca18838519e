#include "host/dump/JsonTree.h"

#include <array>

#include "platform/values/Text.h"

// JSON for a text that people compare: what is short stands on one line, what is longer is broken into a line for each
// member, and so on inwards. The layout depends on the contents alone, so that two dumps of one file have the same
// lines.
//
// Whether something is short is found out by writing it flat first; that makes a cost of length times depth, and a
// schema is a few levels deep.
namespace tavi::host {

namespace {

constexpr std::size_t kLongestLine = 200;  // in UTF-16 units, the indentation left out

/// What JSON demands, and a surrogate without its partner, which UTF-8 has no form for.
std::string Escaped(char32_t character) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  switch (character) {
    case U'"':
      return "\\\"";
    case U'\\':
      return "\\\\";
    case U'\n':
      return "\\n";
    case U'\r':
      return "\\r";
    case U'\t':
      return "\\t";
    default:
      break;
  }
  const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
  if (character >= 0x20 && !isSurrogate) return FromCodePoints({&character, 1});
  std::string escaped = "\\u";
  for (const unsigned shift : {12U, 8U, 4U, 0U}) escaped += kDigits[(character >> shift) & 0xFU];
  return escaped;
}

std::string JsonString(std::string_view text) {
  std::string quoted = "\"";
  for (const char32_t character : ToCodePoints(text)) quoted += Escaped(character);
  return quoted + "\"";
}

/// In UTF-16 units, in which many languages count the length of a text, so that other writers of this form break lines
/// at the same places.
std::size_t LengthOf(const std::string& text) {
  std::size_t length = 0;
  for (const char32_t character : ToCodePoints(text)) length += character > 0xFFFF ? 2 : 1;
  return length;
}

}  // namespace

JsonTree JsonTree::Text(std::string_view text) {
  return {Kind::Scalar, JsonString(text)};
}

JsonTree JsonTree::Texts(const std::vector<std::string>& texts) {
  JsonTree array = Array();
  for (const std::string& text : texts) array.Add(Text(text));
  return array;
}

JsonTree& JsonTree::Set(std::string_view name, JsonTree value) {
  children_.emplace_back(JsonString(name) + ": ", std::move(value));
  return *this;
}

JsonTree& JsonTree::Add(JsonTree value) {
  children_.emplace_back(std::string(), std::move(value));
  return *this;
}

/// All on one line, with a blank behind each comma.
std::string JsonTree::Flat() const {
  if (kind_ == Kind::Scalar) return scalar_;
  std::string text;
  for (const auto& [name, child] : children_) text += (text.empty() ? "" : ", ") + name + child.Flat();
  return Brackets().front() + text + Brackets().back();
}

std::string JsonTree::Write(std::size_t depth) const {
  std::string flat = Flat();
  if (kind_ == Kind::Scalar || LengthOf(flat) <= kLongestLine) return flat;
  std::string text(1, Brackets().front());
  std::string_view separator = "\n";
  for (const auto& [name, child] : children_) {
    text.append(separator).append(2 * (depth + 1), ' ').append(name).append(child.Write(depth + 1));
    separator = ",\n";
  }
  return text + "\n" + std::string(2 * depth, ' ') + Brackets().back();
}

}  // namespace tavi::host
