#include "host/results/XmlElement.h"

#include <algorithm>
#include <cctype>

#include "host/text/Figures.h"
#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi::host {
namespace {

/// Digits with at most one point between or behind them.
bool IsPlainDecimal(std::string_view text) {
  const std::size_t point = text.find('.');
  if (point == std::string_view::npos) return IsFigures(text);
  const std::string_view fraction = text.substr(point + 1);
  return IsFigures(text.substr(0, point)) && (fraction.empty() || IsFigures(fraction));
}

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

XmlDocument::XmlDocument(std::string text, std::string fileName)
    : text_(std::move(text)), fileName_(std::move(fileName)) {
  lineStarts_.push_back(0);
  for (std::size_t i = 0; i < text_.size(); ++i) {
    if (text_[i] == '\n') lineStarts_.push_back(i + 1);
  }
  const pugi::xml_parse_result result =
      document_.load_buffer(text_.data(), text_.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!result || !document_.document_element()) {
    const std::string reason = result ? std::string("there is no element in it") : std::string(result.description());
    throw Error(ErrorNumber::InvalidArgument, "tavi",
                fileName_ + ":" +
                    std::to_string(LineAt(static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, result.offset)))) +
                    ": not well-formed XML (" + reason + "); a complete USEBIO file was expected");
  }
}

std::size_t XmlDocument::LineAt(std::size_t offset) const {
  const auto behind = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), offset);
  return static_cast<std::size_t>(behind - lineStarts_.begin());
}

std::size_t XmlDocument::Line(pugi::xml_node node) const {
  return LineAt(static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, node.offset_debug())));
}

void XmlDocument::Refuse(pugi::xml_node node, const std::string& reason) const {
  RefuseLine(Line(node), reason);
}

void XmlDocument::RefuseLine(std::size_t line, const std::string& reason) const {
  throw Error(ErrorNumber::InvalidArgument, "tavi", fileName_ + ":" + std::to_string(line) + ": " + reason);
}

std::string XmlDocument::Leaf(pugi::xml_node parent, const char* name) const {
  std::string text;
  for (const pugi::xml_node piece : parent.child(name)) {
    if (piece.type() == pugi::node_pcdata || piece.type() == pugi::node_cdata) text += piece.value();
  }
  return TidyText(text);
}

std::optional<double> XmlDocument::Number(pugi::xml_node parent, const char* name, bool allowSign) const {
  const std::string text = Leaf(parent, name);
  if (text.empty()) return std::nullopt;
  const bool isSigned = allowSign && (text.front() == '-' || text.front() == '+');
  const std::string digits = isSigned ? text.substr(1) : text;
  if (!IsPlainDecimal(digits) || digits.size() > 15) {
    Refuse(parent.child(name),
           std::string(name) + " is \"" + text + "\"; expected a number with a decimal point, such as 52.38");
  }
  const double number = ParseNumber(digits).value_or(0.0);
  return isSigned && text.front() == '-' ? -number : number;
}

std::optional<int> XmlDocument::Whole(pugi::xml_node parent, const char* name) const {
  const std::string text = Leaf(parent, name);
  if (text.empty()) return std::nullopt;
  if (!IsFigures(text) || text.size() > kLongestWholeNumber) {
    Refuse(parent.child(name), std::string(name) + " is \"" + text + "\"; expected a whole number");
  }
  return std::stoi(text);
}

Date XmlDocument::RequiredDate(pugi::xml_node parent, const char* name) const {
  const std::string text = Leaf(parent, name);
  if (text.empty()) Refuse(parent, std::string("the event has no ") + name + "; expected the day it was played on");
  const std::optional<Date> date = ParseDate(text);
  if (!date) {
    Refuse(parent.child(name), std::string(name) + " is \"" + text + "\"; expected dd/mm/yyyy or yyyy-mm-dd");
  }
  return *date;
}

}  // namespace tavi::host
