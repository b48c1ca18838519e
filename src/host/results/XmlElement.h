#pragma once

#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "platform/values/Date.h"

namespace tavi::host {

/// A parsed document with the text that it came from, so that messages can name lines.
class XmlDocument {
 public:
  /// Raises InvalidArgument ("FILE:LINE: ...") when the text is not well-formed.
  XmlDocument(std::string text, std::string fileName);

  [[nodiscard]] pugi::xml_node Root() const { return document_.document_element(); }
  /// The line of an element.
  [[nodiscard]] std::size_t Line(pugi::xml_node node) const;
  /// Raises InvalidArgument for the place of an element.
  [[noreturn]] void Refuse(pugi::xml_node node, const std::string& reason) const;

  /// Raises InvalidArgument for a line.
  [[noreturn]] void RefuseLine(std::size_t line, const std::string& reason) const;

  /// The text of a child element, its pieces joined, blanks at the ends and line breaks tidied; empty when the element
  /// is missing or empty.
  [[nodiscard]] std::string Leaf(pugi::xml_node parent, const char* name) const;
  /// A child that holds a plain decimal number (point, optional sign when `allowSign`); nothing when missing or empty.
  [[nodiscard]] std::optional<double> Number(pugi::xml_node parent, const char* name, bool allowSign) const;
  /// A child that holds a whole number of at most nine figures; nothing when missing or empty.
  [[nodiscard]] std::optional<int> Whole(pugi::xml_node parent, const char* name) const;
  /// A child that holds a date: dd/mm/yyyy, dd-mm-yyyy or yyyy-mm-dd. Raises InvalidArgument when it is missing or
  /// none.
  [[nodiscard]] Date RequiredDate(pugi::xml_node parent, const char* name) const;

 private:
  [[nodiscard]] std::size_t LineAt(std::size_t offset) const;

  std::string text_;
  std::string fileName_;
  std::vector<std::size_t> lineStarts_;
  pugi::xml_document document_;
};

/// Blanks, tabs and line breaks folded into single blanks, control characters dropped, ends trimmed.
std::string TidyText(std::string_view text);

}  // namespace tavi::host
