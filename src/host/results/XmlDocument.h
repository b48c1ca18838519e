#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/results/XmlElement.h"
#include "platform/values/Date.h"

namespace tavi::host {

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
