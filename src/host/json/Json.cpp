#include "host/json/Json.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <ostream>

#include "host/json/JsonScalars.h"

// A JSON value as a tree of plain members. Names of an object stand beside their values, by place, and are looked for
// one after the other: objects here have a dozen members, and requests at most a hundred, for which that is quick
// enough, and it keeps the order in which they were put in.
namespace tavi::host {
namespace {

/// What an element of a list of values must be for the list to be an object.
/// {"a", 1} is a member of that name; so {{"a", "b"}, {"c", "d"}} is an object, and who wants an array of pairs says so
/// (Array).
bool IsMember(const Json& value) {
  return value.IsArray() && value.size() == 2 && value[0].IsText();
}

}  // namespace

/// What differs between the ways of writing.
struct Json::Layout {
  bool isAscii = false;
  bool isIndented = false;

  void BreakLine(std::string& out, std::size_t depth) const {
    if (isIndented) out += "\n" + std::string(2 * depth, ' ');
  }
};

// Lists of the component's results become arrays by themselves, so that who writes a reply names its values and no
// more.
Json::Json(const std::vector<std::string>& texts) : kind_(Kind::Array), parts_(texts.begin(), texts.end()) {}

Json::Json(const std::vector<std::int32_t>& numbers) : kind_(Kind::Array), parts_(numbers.begin(), numbers.end()) {}

Json::Json(std::initializer_list<Json> values) : kind_(Kind::Array) {
  if (!std::all_of(values.begin(), values.end(), IsMember)) {
    parts_ = values;
    return;
  }
  kind_ = Kind::Object;
  // By name, so that the last of two members of one name counts.
  for (const Json& member : values) (*this)[member[0].Text()] = member[1];
}

Json Json::Array(std::initializer_list<Json> elements) {
  Json array(Kind::Array);
  array.parts_ = elements;
  return array;
}

Json Json::Object() {
  return Json(Kind::Object);
}

Json Json::Nothing() {
  return Json(Kind::Nothing);
}

Json Json::FromUnsigned(std::uint64_t number) {
  const bool isLarge = number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  Json json(isLarge ? Kind::LargeWhole : Kind::Whole);
  // The bits are the same for numbers that fit; those that do not are told by their kind.
  json.whole_ = std::bit_cast<std::int64_t>(number);
  return json;
}

bool Json::Flag() const {
  // A fault of the caller, who has to ask first, and not of the JSON.
  if (!IsFlag()) throw std::logic_error("a JSON value is not true or false");
  return whole_ != 0;
}

double Json::Number() const {
  if (!IsNumber()) throw std::logic_error("a JSON value is no number");
  if (kind_ == Kind::Double) return double_;
  // Whole numbers beyond 53 bits are rounded.
  return kind_ == Kind::Whole ? static_cast<double>(whole_) : static_cast<double>(std::bit_cast<std::uint64_t>(whole_));
}

const std::string& Json::Text() const {
  if (!IsText()) throw std::logic_error("a JSON value is no text");
  return text_;
}

std::size_t Json::size() const {
  if (IsArray() || IsObject()) return parts_.size();
  return IsNull() || IsNothing() ? 0 : 1;
}

// No difference between an object without this member and what is no object: neither has it.
const Json* Json::Find(const std::string& name) const {
  const auto found = std::find(names_.begin(), names_.end(), name);
  return found == names_.end() ? nullptr : &parts_[static_cast<std::size_t>(found - names_.begin())];
}

const Json& Json::at(const std::string& name) const {
  if (const Json* found = Find(name)) return *found;
  throw std::out_of_range("no member \"" + name + "\"");
}

Json& Json::operator[](const std::string& name) {
  // So that an object grows as it is filled, and so do those within it.
  if (IsNull()) kind_ = Kind::Object;
  const auto found = std::find(names_.begin(), names_.end(), name);
  if (found != names_.end()) return parts_[static_cast<std::size_t>(found - names_.begin())];
  names_.push_back(name);
  return parts_.emplace_back();
}

std::string Json::Compact() const {
  std::string out;
  Write(out, {}, 0);
  return out;
}

// For messages that may be cut anywhere, and for outputs that carry nothing else.
std::string Json::CompactAscii() const {
  std::string out;
  Write(out, {.isAscii = true}, 0);
  return out;
}

std::string Json::Indented() const {
  std::string out;
  Write(out, {.isIndented = true}, 0);
  return out;
}

// It goes down as deep as the value is: who takes JSON from others looks at its depth first (ScanJson).
void Json::Write(std::string& out, const Layout& layout, std::size_t depth) const {
  switch (kind_) {
    // A mark that was forgotten in a value; null is the nearest to it.
    case Kind::Nothing:
    case Kind::Null:
      out += "null";
      return;
    case Kind::Flag:
      out += whole_ != 0 ? "true" : "false";
      return;
    case Kind::Whole:
      out += std::to_string(whole_);
      return;
    case Kind::LargeWhole:
      out += std::to_string(std::bit_cast<std::uint64_t>(whole_));
      return;
    case Kind::Double:
      out += JsonNumber(double_);
      return;
    case Kind::Text:
      out += JsonText(text_, layout.isAscii);
      return;
    case Kind::Array:
    case Kind::Object:
      out += IsArray() ? "[" : "{";
      if (!parts_.empty()) WriteParts(out, layout, depth);
      out += IsArray() ? "]" : "}";
      return;
  }
}

void Json::WriteParts(std::string& out, const Layout& layout, std::size_t depth) const {
  for (std::size_t place = 0; place < parts_.size(); ++place) {
    if (place > 0) out += ',';
    layout.BreakLine(out, depth + 1);
    if (IsObject()) out += JsonText(names_[place], layout.isAscii) + (layout.isIndented ? ": " : ":");
    parts_[place].Write(out, layout, depth + 1);
  }
  layout.BreakLine(out, depth);
}

bool operator==(const Json& left, const Json& right) {
  if (left.IsNumber() && right.IsNumber()) {
    // 1 and 1.0 are equal, as they are the same number to JSON.
    const bool areDoubles = left.kind_ == Json::Kind::Double || right.kind_ == Json::Kind::Double;
    return areDoubles ? left.Number() == right.Number() : left.kind_ == right.kind_ && left.whole_ == right.whole_;
  }
  return left.kind_ == right.kind_ && left.whole_ == right.whole_ && left.text_ == right.text_ &&
         left.names_ == right.names_ && left.parts_ == right.parts_;
}

std::ostream& operator<<(std::ostream& out, const Json& json) {
  return out << json.Compact();
}

}  // namespace tavi::host
