#include "host/rpc/RequestText.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <istream>

// From the bytes of the input to a request, at a bounded cost, whoever sends them. A line is at most 16 MiB; its depth
// and the members of its objects are looked at before anything is built of it. Each of these ends one request and not
// the session.
//
// A number that no double holds, such as 1e999, makes the library refuse the whole text, so that of a batch nobody
// would know which request it was. Such a number is replaced by an object, which no argument takes, and the text read
// again: then just the request that holds it is refused.
namespace tavi::host {
namespace {

/// Refuses what would be expensive to build: deep values, because
/// what walks over them recurses, and objects with many members, because each new one is compared with all before it.
class LimitCheck final : public JsonObserver {
 public:
  void Enter() override {
    members_.push_back(0);
    if (members_.size() > kDeepest) throw RpcError(RpcCode::InvalidRequest, "Invalid request: it is nested too deeply");
  }
  void Leave() override { members_.pop_back(); }
  void Member() override {
    if (++members_.back() <= kMostMembers) return;
    throw RpcError(RpcCode::InvalidRequest,
                   "Invalid request: an object has more than " + std::to_string(kMostMembers) + " members");
  }

 private:
  static constexpr std::size_t kDeepest = 16;
  static constexpr int kMostMembers = 100;

  std::vector<int> members_;  ///< of each open object so far
};

/// Raises RpcError for what goes beyond the limits. What is no JSON at all is found out by parsing.
bool HoldsHugeNumber(const std::string& text) {
  LimitCheck check;
  return ScanJson(text, check) == JsonScan::HugeNumber;
}

/// The place behind the text that begins at `start`, its closing quotation mark included.
std::size_t EndOfString(const std::string& json, std::size_t start) {
  std::size_t end = start + 1;
  // A backslash takes the next character with it, whatever it is.
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
    // Pieces that are neither texts nor numbers are single characters, which read as 0.
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
    // The rest is read over without being kept, up to the end of the line, so that the next one is whole again.
    if (++length <= kLongestLine) line.push_back(static_cast<char>(next));
  }
  if (length <= kLongestLine) return LineRead::Read;
  line = std::string();
  return LineRead::TooLong;
}

Json ParseRequest(const std::string& line) {
  try {
    if (!HoldsHugeNumber(line)) return Json::Parse(line);
    const std::string text = WithoutHugeNumbers(line);
    // Once more, because the first walk ended at the number: what stands behind it has not been looked at. The objects
    // that were put in count, too.
    static_cast<void>(HoldsHugeNumber(text));
    return Json::Parse(text);
  } catch (const JsonError& problem) {
    throw RpcError(RpcCode::ParseError, std::string("Parse error: ") + problem.what());
  }
}

}  // namespace tavi::host
