#include "host/results/XmlElement.h"

#include <algorithm>

#include "platform/values/Text.h"

namespace tavi::host {

const XmlElement* XmlElement::Child(std::string_view childName) const {
  const auto found = std::ranges::find(children, childName, &XmlElement::name);
  return found == children.end() ? nullptr : &*found;
}

std::vector<const XmlElement*> XmlElement::Children(std::string_view childName) const {
  std::vector<const XmlElement*> found;
  for (const XmlElement& child : children) {
    if (child.name == childName) found.push_back(&child);
  }
  return found;
}

std::string XmlElement::Attribute(std::string_view attributeName) const {
  for (const auto& [attribute, value] : attributes) {
    if (attribute == attributeName) return value;
  }
  return {};
}

std::string TidyText(std::string_view text) {
  std::string tidy;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool blank = byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
    if (blank && !tidy.empty() && tidy.back() != ' ') tidy.push_back(' ');
    if (!blank && byte >= 0x20 && byte != 0x7F) tidy.push_back(c);
  }
  return Trim(tidy);
}

}  // namespace tavi::host
