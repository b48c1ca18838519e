#include <algorithm>

#include "host/results/Xml.h"
#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"
#include "util/TextHelpers.h"

// What readers ask of a parsed document: leaves by name, with their values checked. A value that cannot be read is
// refused here, with the line of its element, what it says and an example of what was expected, so that every reader's
// messages are alike. A missing leaf and an empty one are the same, as writers use them.
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
    // Never at the beginning; at most one at the end, which trimming takes away.
    if (blank && !tidy.empty() && tidy.back() != ' ') tidy.push_back(' ');
    if (!blank && byte >= 0x20 && byte != 0x7F) tidy.push_back(c);
  }
  return Trim(tidy);
}

namespace {

/// No comma, which may divide thousands or decimals; no exponent, "inf" or "nan", which ParseNumber might take. Digits
/// have to stand before the point.
/// Digits with at most one point between or behind them.
bool IsPlainDecimal(std::string_view text) {
  const std::size_t point = text.find('.');
  if (point == std::string_view::npos) return IsFigures(text);
  const std::string_view fraction = text.substr(point + 1);
  return IsFigures(text.substr(0, point)) && (fraction.empty() || IsFigures(fraction));
}

/// Never month first: no writer of these files does that. The year is the part of four figures, at the beginning or at
/// the end.
std::optional<Date> ParseDate(const std::string& text) {
  const std::string unified = ReplaceAll(text, "-", "/");
  const std::vector<std::string> parts = Split(unified, '/');
  if (parts.size() != 3 || !IsFigures(parts[0]) || !IsFigures(parts[1]) || !IsFigures(parts[2])) return std::nullopt;
  const bool yearFirst = parts[0].size() == 4;
  const std::string& year = yearFirst ? parts[0] : parts[2];
  const std::string& day = yearFirst ? parts[2] : parts[0];
  if (year.size() != 4 || day.size() > 2 || parts[1].size() > 2) return std::nullopt;
  try {
    return Date::FromCivil(std::stoi(year), std::stoi(parts[1]), std::stoi(day));
  } catch (const Error&) {
    return std::nullopt;
  }
}

}  // namespace

XmlDocument::XmlDocument(std::string_view text, std::string fileName)
    // fileName_ is declared before the root and so is set when parsing needs it.
    : fileName_(std::move(fileName)), root_(ParseXml(text, fileName_)) {}

void XmlDocument::Refuse(const XmlElement& element, const std::string& reason) const {
  RefuseLine(element.line, reason);
}

void XmlDocument::RefuseChild(const XmlElement& parent, const char* name, const std::string& reason) const {
  const XmlElement* child = parent.Child(name);
  Refuse(child == nullptr ? parent : *child, reason);
}

void XmlDocument::RefuseLine(std::size_t line, const std::string& reason) const {
  throw Error(ErrorNumber::InvalidArgument, "tavi", fileName_ + ":" + std::to_string(line) + ": " + reason);
}

// Of several the first counts.
std::string XmlDocument::Leaf(const XmlElement& parent, const char* name) const {
  const XmlElement* child = parent.Child(name);
  return child == nullptr ? std::string() : TidyText(child->text);
}

std::optional<double> XmlDocument::Number(const XmlElement& parent, const char* name, bool allowSign) const {
  const std::string text = Leaf(parent, name);
  if (text.empty()) return std::nullopt;
  const bool isSigned = allowSign && (text.front() == '-' || text.front() == '+');
  const std::string digits = isSigned ? text.substr(1) : text;
  const std::optional<double> number = IsPlainDecimal(digits) ? ParseNumber(digits) : std::nullopt;
  if (!number) {
    RefuseChild(parent, name,
                std::string(name) + " is \"" + text + "\"; expected a number with a decimal point, such as 52.38");
  }
  return isSigned && text.front() == '-' ? -*number : *number;
}

// Nine figures always fit; what has more is no number of people, boards or points.
std::optional<int> XmlDocument::Whole(const XmlElement& parent, const char* name) const {
  const std::string text = Leaf(parent, name);
  if (text.empty()) return std::nullopt;
  if (!IsFigures(text) || text.size() > kLongestWholeNumber) {
    RefuseChild(parent, name, std::string(name) + " is \"" + text + "\"; expected a whole number");
  }
  return std::stoi(text);
}

Date XmlDocument::RequiredDate(const XmlElement& parent, const char* name) const {
  const std::string text = Leaf(parent, name);
  if (text.empty()) Refuse(parent, std::string("the event has no ") + name + "; expected the day it was played on");
  const std::optional<Date> date = ParseDate(text);
  if (!date) {
    RefuseChild(parent, name, std::string(name) + " is \"" + text + "\"; expected dd/mm/yyyy or yyyy-mm-dd");
  }
  return *date;
}

}  // namespace tavi::host
