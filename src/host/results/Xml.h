#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/values/Date.h"

namespace tavi::host {

/// The largest result file that is read, in bytes.
inline constexpr std::size_t kMaximumResultFileBytes = std::size_t{32} << 20U;
/// Reads a whole file. Raises InvalidArgument that names the file when it is missing, a folder, unreadable or too
/// large.
std::string ReadWholeFile(const std::string& path);

/// The UTF-8 text of an XML document's bytes: the byte-order mark decides, then the zero byte in a first character of
/// UTF-16, then the declaration, then UTF-8. What calls itself ISO 8859-1 is read as windows-1252 (which it often truly
/// is); a document without a mark and a declaration that is not UTF-8 likewise. Raises InvalidArgument ("FILE:LINE:
/// ...") when the bytes are not in the declared encoding or the encoding is unknown.
std::string DecodeXml(std::string_view bytes, const std::string& fileName);

/// An element of an XML document with all that lies inside it.
struct XmlElement {
  std::string name;
  std::size_t line = 1;  ///< in which its tag begins
  std::vector<std::pair<std::string, std::string>> attributes;
  std::string text;  ///< its own text, the pieces between child elements joined; blank pieces are left out
  std::vector<XmlElement> children;

  /// The first child of a name; null when there is none. It lives as long as this element.
  [[nodiscard]] const XmlElement* Child(std::string_view childName) const;
  /// All children of a name, in their order.
  [[nodiscard]] std::vector<const XmlElement*> Children(std::string_view childName) const;
  /// The value of an attribute; empty when there is none.
  [[nodiscard]] std::string Attribute(std::string_view attributeName) const;
};

/// Blanks, tabs and line breaks folded into single blanks, control characters dropped, ends trimmed.
std::string TidyText(std::string_view text);

/// How deep elements may lie inside one another; real files reach 8.
inline constexpr std::size_t kMaximumElementDepth = 64;
/// How many elements a document may have; those of the largest events have some ten thousand.
inline constexpr std::size_t kMaximumElements = 1'000'000;

/// Reads an XML document as result files need it, the same on every system, and gives its root element. Entities of
/// characters are resolved; an ampersand that begins none stays, because club programs forget to escape it. Comments,
/// processing instructions and document types are passed over, and nothing outside of the text is ever opened.
///
/// `text` is UTF-8; `fileName` is for messages. Raises InvalidArgument ("FILE:LINE: ...") for a text that is not
/// well-formed or holds control characters, elements that are too many or lie too deep, and a document type that
/// defines entities.
XmlElement ParseXml(std::string_view text, const std::string& fileName);

/// The number of the line (from 1) in which a byte lies.
std::size_t LineOf(std::string_view text, std::size_t offset);

/// A parsed document with the name of its file, so that messages can name both.
class XmlDocument {
 public:
  /// Raises InvalidArgument ("FILE:LINE: ...") when the text is refused (ParseXml tells what is).
  XmlDocument(std::string_view text, std::string fileName);

  [[nodiscard]] const XmlElement& Root() const { return root_; }
  /// Raises InvalidArgument for the place of an element.
  [[noreturn]] void Refuse(const XmlElement& element, const std::string& reason) const;

  /// Raises InvalidArgument for a line.
  [[noreturn]] void RefuseLine(std::size_t line, const std::string& reason) const;

  /// The text of a child element, blanks at the ends and line breaks tidied; empty when the element is missing or
  /// empty.
  [[nodiscard]] std::string Leaf(const XmlElement& parent, const char* name) const;
  /// A child that holds a plain decimal number of any length (point, optional sign when `allowSign`); nothing when
  /// missing or empty.
  [[nodiscard]] std::optional<double> Number(const XmlElement& parent, const char* name, bool allowSign) const;
  /// A child that holds a whole number of at most nine figures; nothing when missing or empty.
  [[nodiscard]] std::optional<int> Whole(const XmlElement& parent, const char* name) const;
  /// A child that holds a date: dd/mm/yyyy, dd-mm-yyyy or yyyy-mm-dd. Raises InvalidArgument when it is missing or
  /// none.
  [[nodiscard]] Date RequiredDate(const XmlElement& parent, const char* name) const;

 private:
  /// Raises InvalidArgument for the place of a child, or of the element itself when it has no such child.
  [[noreturn]] void RefuseChild(const XmlElement& parent, const char* name, const std::string& reason) const;

  std::string fileName_;
  XmlElement root_;
};

}  // namespace tavi::host
