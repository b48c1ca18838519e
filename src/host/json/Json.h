#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <stdexcept>
#include <string>
#include <vector>

namespace tavi::host {

/// A text is no JSON; says where.
class JsonError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A JSON value. The members of an object keep the order in which they were put in, so that what is written reads as
/// the documentation does. Numbers are equal when their values are, objects when their members stand in one order.
///
/// The library that reads and writes scalars is behind this: who works with JSON does not compile it.
class Json {
 public:
  /// Null.
  Json() = default;
  Json(std::nullptr_t /*null*/) {}  // NOLINT: values become JSON by themselves, here and below
  Json(std::same_as<bool> auto flag) : kind_(Kind::Flag), whole_(flag ? 1 : 0) {}  // NOLINT
  Json(std::signed_integral auto number) : kind_(Kind::Whole), whole_(number) {}   // NOLINT
  template <std::unsigned_integral Number>
  requires(!std::same_as<Number, bool>) Json(Number number) : Json(FromUnsigned(number)) {}  // NOLINT
  Json(std::same_as<double> auto number) : kind_(Kind::Double), double_(number) {}           // NOLINT
  Json(std::string text) : kind_(Kind::Text), text_(std::move(text)) {}                      // NOLINT
  Json(const char* text) : kind_(Kind::Text), text_(text) {}                                 // NOLINT
  Json(const std::vector<std::string>& texts);                                               // NOLINT
  Json(const std::vector<std::int32_t>& numbers);                                            // NOLINT
  /// An object when each value is a pair of a text and something, else an array.
  Json(std::initializer_list<Json> values);
  [[nodiscard]] static Json Array(std::initializer_list<Json> elements = {});
  [[nodiscard]] static Json Object();
  /// What is not even null, as a mark of one's own. Not written.
  [[nodiscard]] static Json Nothing();

  /// Raises JsonError. Values may be nested as deeply as memory allows: see ScanJson.
  [[nodiscard]] static Json Parse(const std::string& text);

  [[nodiscard]] bool IsNothing() const { return kind_ == Kind::Nothing; }
  [[nodiscard]] bool IsNull() const { return kind_ == Kind::Null; }
  [[nodiscard]] bool IsFlag() const { return kind_ == Kind::Flag; }
  [[nodiscard]] bool IsNumber() const {
    return kind_ == Kind::Whole || kind_ == Kind::LargeWhole || kind_ == Kind::Double;
  }
  [[nodiscard]] bool IsText() const { return kind_ == Kind::Text; }
  [[nodiscard]] bool IsArray() const { return kind_ == Kind::Array; }
  [[nodiscard]] bool IsObject() const { return kind_ == Kind::Object; }

  /// The value of a flag, number or text. Raises std::logic_error for another one.
  [[nodiscard]] bool Flag() const;
  [[nodiscard]] double Number() const;
  [[nodiscard]] const std::string& Text() const;

  /// The number of elements or members; 0 for null, 1 for another scalar.
  [[nodiscard]] std::size_t size() const;
  [[nodiscard]] bool empty() const { return size() == 0; }
  /// The elements of an array, the values of an object.
  [[nodiscard]] std::vector<Json>::const_iterator begin() const { return parts_.begin(); }
  [[nodiscard]] std::vector<Json>::const_iterator end() const { return parts_.end(); }
  /// The name of an object's member by its place.
  [[nodiscard]] const std::string& NameAt(std::size_t place) const { return names_.at(place); }
  /// A member's value; nullptr when there is none of that name, or this is no object.
  [[nodiscard]] const Json* Find(const std::string& name) const;
  /// An element or a member. Raises std::out_of_range when there is none.
  [[nodiscard]] const Json& at(std::size_t place) const { return parts_.at(place); }
  [[nodiscard]] const Json& at(const std::string& name) const;
  const Json& operator[](std::size_t place) const { return at(place); }
  const Json& operator[](const std::string& name) const { return at(name); }

  /// A member to be set, added to the object when there is none of that name. Null becomes an object.
  Json& operator[](const std::string& name);
  /// An element to be set, as at().
  Json& operator[](std::size_t place) { return parts_.at(place); }
  /// Adds an element to an array.
  void Add(Json element) { parts_.push_back(std::move(element)); }

  /// On one line.
  [[nodiscard]] std::string Compact() const;
  /// On one line of ASCII characters alone.
  [[nodiscard]] std::string CompactAscii() const;
  /// A line for each element and member, indented by two spaces.
  [[nodiscard]] std::string Indented() const;

  friend bool operator==(const Json& left, const Json& right);
  friend std::ostream& operator<<(std::ostream& out, const Json& json);

 private:
  friend class JsonBuilder;
  enum class Kind { Nothing, Null, Flag, Whole, LargeWhole, Double, Text, Array, Object };
  struct Layout;

  explicit Json(Kind kind) : kind_(kind) {}
  [[nodiscard]] static Json FromUnsigned(std::uint64_t number);
  void Write(std::string& out, const Layout& layout, std::size_t depth) const;
  void WriteParts(std::string& out, const Layout& layout, std::size_t depth) const;

  Kind kind_ = Kind::Null;
  std::int64_t whole_ = 0;  ///< also a flag; the bits of a whole number of 64 bits without a sign
  double double_ = 0;
  std::string text_;
  std::vector<std::string> names_;  ///< of an object's members
  std::vector<Json> parts_;         ///< an array's elements, an object's values
};

/// Told what is found in a JSON text, in its order. What it throws ends the scan.
class JsonObserver {
 public:
  /// An object or array begins, ends; a member's name was read.
  virtual void Enter() = 0;
  virtual void Leave() = 0;
  virtual void Member() = 0;

 protected:
  ~JsonObserver() = default;
};

enum class JsonScan { Sound, Faulty, HugeNumber };

/// Walks over a text and keeps nothing of it. HugeNumber: it ended at a number that no double holds.
[[nodiscard]] JsonScan ScanJson(const std::string& text, JsonObserver& observer);

}  // namespace tavi::host
