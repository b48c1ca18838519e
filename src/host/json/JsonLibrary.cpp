// All that needs the JSON library, which takes seconds to compile.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/json/Json.h"
#include "host/json/JsonScalars.h"

namespace tavi::host {

using Library = nlohmann::ordered_json;

/// The library's own tree is passed over: it would be built once, and copied into this one at twice the memory.
/// Puts together what the library reads.
class JsonBuilder final : public nlohmann::json_sax<Library> {
 public:
  [[nodiscard]] Json Take() { return std::move(root_); }

  // The library calls these as it reads, and goes on as long as they answer true.
  bool null() override { return Put(nullptr); }
  bool boolean(bool value) override { return Put(value); }
  bool number_integer(number_integer_t value) override { return Put(value); }
  bool number_unsigned(number_unsigned_t value) override { return Put(value); }
  bool number_float(number_float_t value, const string_t& /*text*/) override { return Put(value); }
  bool string(string_t& value) override { return Put(std::move(value)); }
  bool binary(binary_t& /*value*/) override { return false; }
  // Comes before the value that it names, which may be a whole tree.
  bool key(string_t& name) override {
    name_ = std::move(name);
    return true;
  }
  bool start_object(std::size_t /*size*/) override { return Enter(Json::Object()); }
  bool start_array(std::size_t /*size*/) override { return Enter(Json::Array()); }
  bool end_object() override { return Leave(); }
  bool end_array() override { return Leave(); }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/, const Library::exception& problem) override {
    throw JsonError(problem.what());
  }

 private:
  /// Puts a value where it belongs: into the object under the name that was read last, or at the end of the array.
  Json& Place(Json value) {
    if (open_.empty()) return root_ = std::move(value);
    Json& parent = *open_.back();
    if (parent.IsObject()) return parent[name_] = std::move(value);
    parent.Add(std::move(value));
    return parent.parts_.back();
  }
  bool Put(Json value) {
    Place(std::move(value));
    return true;
  }
  /// While an object or array is open, nothing is added to those around it, so that they stay where they are.
  bool Enter(Json value) {
    open_.push_back(&Place(std::move(value)));
    return true;
  }
  bool Leave() {
    open_.pop_back();
    return true;
  }

  Json root_;
  std::string name_;
  std::vector<Json*> open_;
};

namespace {

/// Walks over a text for an observer. What that throws passes through the library.
class Scanner final : public nlohmann::json_sax<Library> {
 public:
  explicit Scanner(JsonObserver& observer) : observer_(observer) {}
  [[nodiscard]] bool FoundHugeNumber() const { return foundHugeNumber_; }

  bool null() override { return true; }
  bool boolean(bool /*value*/) override { return true; }
  bool number_integer(number_integer_t /*value*/) override { return true; }
  bool number_unsigned(number_unsigned_t /*value*/) override { return true; }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return true; }
  bool string(string_t& /*value*/) override { return true; }
  bool binary(binary_t& /*value*/) override { return true; }
  bool key(string_t& /*name*/) override {
    observer_.Member();
    return true;
  }
  bool start_object(std::size_t /*size*/) override { return Enter(); }
  bool start_array(std::size_t /*size*/) override { return Enter(); }
  bool end_object() override { return Leave(); }
  bool end_array() override { return Leave(); }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/, const Library::exception& problem) override {
    // The only thing that the library finds out of range is a number; the text behind it has not been looked at.
    foundHugeNumber_ = dynamic_cast<const Library::out_of_range*>(&problem) != nullptr;
    return false;
  }

 private:
  bool Enter() {
    observer_.Enter();
    return true;
  }
  bool Leave() {
    observer_.Leave();
    return true;
  }

  JsonObserver& observer_;
  bool foundHugeNumber_ = false;
};

}  // namespace

Json Json::Parse(const std::string& text) {
  JsonBuilder builder;
  static_cast<void>(Library::sax_parse(text, &builder));
  return builder.Take();
}

JsonScan ScanJson(const std::string& text, JsonObserver& observer) {
  Scanner scanner(observer);
  if (Library::sax_parse(text, &scanner)) return JsonScan::Sound;
  return scanner.FoundHugeNumber() ? JsonScan::HugeNumber : JsonScan::Faulty;
}

std::string JsonNumber(double number) {
  return Library(number).dump();
}

std::string JsonText(const std::string& text, bool isAscii) {
  const auto standsForItself = [](char c) { return c >= ' ' && c < '\x7f' && c != '"' && c != '\\'; };
  // As most texts do; the library takes several times as long to find out.
  if (std::all_of(text.begin(), text.end(), standsForItself)) return '"' + text + '"';
  // Replacing: texts of old files may be no UTF-8, and a reply with one odd letter is better than none.
  return Library(text).dump(-1, ' ', isAscii, Library::error_handler_t::replace);
}

}  // namespace tavi::host
