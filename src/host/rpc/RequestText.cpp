#include "host/rpc/RequestText.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <istream>

#include "host/rpc/RpcError.h"

namespace tavi::host {
namespace {

/// Walks over a text without keeping anything of it, and refuses what would be expensive to build: deep values, because
/// what walks over them recurses, and objects with many members, because each new one is compared with all before it.
class LimitCheck final : public nlohmann::json_sax<Json> {
 public:
  /// True when the text ended at a number that no double holds.
  [[nodiscard]] bool FoundHugeNumber() const { return foundHugeNumber_; }

  bool null() override { return true; }
  bool boolean(bool /*value*/) override { return true; }
  bool number_integer(number_integer_t /*value*/) override { return true; }
  bool number_unsigned(number_unsigned_t /*value*/) override { return true; }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return true; }
  bool string(string_t& /*value*/) override { return true; }
  bool binary(binary_t& /*value*/) override { return true; }
  bool start_object(std::size_t /*size*/) override { return Enter(); }
  bool end_object() override { return Leave(); }
  bool start_array(std::size_t /*size*/) override { return Enter(); }
  bool end_array() override { return Leave(); }

  bool key(string_t& /*name*/) override {
    if (++members_.back() <= kMostMembers) return true;
    throw RpcError(RpcCode::InvalidRequest,
                   "Invalid request: an object has more than " + std::to_string(kMostMembers) + " members");
  }

  bool parse_error(std::size_t /*position*/, const std::string& /*token*/, const Json::exception& problem) override {
    foundHugeNumber_ = dynamic_cast<const Json::out_of_range*>(&problem) != nullptr;
    return false;
  }

 private:
  static constexpr std::size_t kDeepest = 16;
  static constexpr int kMostMembers = 100;

  bool Enter() {
    members_.push_back(0);
    if (members_.size() <= kDeepest) return true;
    throw RpcError(RpcCode::InvalidRequest, "Invalid request: it is nested too deeply");
  }
  bool Leave() {
    members_.pop_back();
    return true;
  }

  std::vector<int> members_;  ///< of each open object so far
  bool foundHugeNumber_ = false;
};

bool HoldsHugeNumber(const std::string& text) {
  LimitCheck check;
  static_cast<void>(Json::sax_parse(text, &check));
  return check.FoundHugeNumber();
}

/// The place behind the text that begins at `start`, its closing quotation mark included.
std::size_t EndOfString(const std::string& json, std::size_t start) {
  std::size_t end = start + 1;
  while (end < json.size() && json[end] != '"') end += json[end] == '\\' ? 2U : 1U;
  return std::min(end + 1, json.size());
}

/// The same JSON with objects in place of the numbers that no double holds.
std::string WithoutHugeNumbers(const std::string& json) {
  std::string result;
  for (std::size_t start = 0; start < json.size();) {
    std::size_t end = start + 1;
    if (json[start] == '"') {
      end = EndOfString(json, start);
    } else if (json[start] == '-' || (json[start] >= '0' && json[start] <= '9')) {
      end = std::min(json.find_first_not_of("0123456789+-.eE", start), json.size());
    }
    const std::string piece = json.substr(start, end - start);
    const bool isHuge = piece[0] != '"' && std::isinf(std::strtod(piece.c_str(), nullptr));
    // The inner array keeps the object from being taken for arguments by name.
    result += isHuge && end > start + 1 ? R"({"too large a number":[")" + piece + R"("]})" : piece;
    start = end;
  }
  return result;
}

}  // namespace

LineRead ReadLine(std::istream& in, std::string& line) {
  constexpr int kEnd = std::istream::traits_type::eof();
  line.clear();
  std::size_t length = 0;
  int next = in.get();
  if (next == kEnd) return LineRead::AtEnd;
  for (; next != kEnd && next != '\n'; next = in.get()) {
    if (++length <= kLongestLine) line.push_back(static_cast<char>(next));
  }
  if (length <= kLongestLine) return LineRead::Read;
  line = std::string();
  return LineRead::TooLong;
}

Json ParseRequest(const std::string& line) {
  try {
    if (!HoldsHugeNumber(line)) return Json::parse(line);
    const std::string text = WithoutHugeNumbers(line);
    static_cast<void>(HoldsHugeNumber(text));
    return Json::parse(text);
  } catch (const Json::exception& problem) {
    throw RpcError(RpcCode::ParseError, std::string("Parse error: ") + problem.what());
  }
}

}  // namespace tavi::host
