#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavi::host {

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

}  // namespace tavi::host
