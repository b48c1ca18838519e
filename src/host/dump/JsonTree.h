#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavi::host {

/// A JSON document that is built once and written. Members of objects keep the order in which they were added.
class JsonTree {
 public:
  [[nodiscard]] static JsonTree Object() { return JsonTree(Kind::Object, {}); }
  [[nodiscard]] static JsonTree Array() { return JsonTree(Kind::Array, {}); }
  [[nodiscard]] static JsonTree Text(std::string_view text);
  [[nodiscard]] static JsonTree Number(std::size_t number) { return JsonTree(Kind::Scalar, std::to_string(number)); }
  [[nodiscard]] static JsonTree Flag(bool flag) { return JsonTree(Kind::Scalar, flag ? "true" : "false"); }
  [[nodiscard]] static JsonTree Texts(const std::vector<std::string>& texts);

  /// Adds a member to an object, and returns this object.
  JsonTree& Set(std::string_view name, JsonTree value);
  /// Adds an element to an array, and returns this array.
  JsonTree& Add(JsonTree value);

  /// The document as text without an end of line. Objects and arrays of at most 200 characters stand on one line, so
  /// that a document is easy to read and to compare; longer ones have a line for each member, indented by two spaces.
  [[nodiscard]] std::string Write() const { return Write(0); }

 private:
  enum class Kind { Scalar, Array, Object };
  JsonTree(Kind kind, std::string scalar) : kind_(kind), scalar_(std::move(scalar)) {}

  [[nodiscard]] std::string Flat() const;
  [[nodiscard]] std::string Write(std::size_t depth) const;
  [[nodiscard]] std::string Brackets() const { return kind_ == Kind::Array ? "[]" : "{}"; }

  Kind kind_;
  std::string scalar_;                                      ///< the text of a scalar, as written
  std::vector<std::pair<std::string, JsonTree>> children_;  ///< the names of an object's members end in ": "
};

}  // namespace tavi::host
