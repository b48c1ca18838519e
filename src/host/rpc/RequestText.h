#pragma once

#include <cstddef>
#include <iosfwd>
#include <stdexcept>
#include <string>

#include "host/rpc/JsonValues.h"

namespace tavi::host {

/// The error codes of JSON-RPC 2.0 itself.
enum class RpcCode : int {
  ParseError = -32700,
  InvalidRequest = -32600,
  MethodNotFound = -32601,
  InvalidParams = -32602,
  InternalError = -32603,
};

/// A request that cannot be carried out as it was put. (Errors of the component are tavi::Error.)
class RpcError : public std::runtime_error {
 public:
  RpcError(RpcCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
  [[nodiscard]] RpcCode Code() const { return code_; }

 private:
  RpcCode code_;
};

/// The longest line that is taken, in bytes.
inline constexpr std::size_t kLongestLine = std::size_t{16} << 20;

/// What became of reading a line.
enum class LineRead { Read, TooLong, AtEnd };

/// Reads up to the next end of line, which is dropped. Of a line that is too long nothing is kept, so that no caller
/// can use up the memory; the next call goes on behind it.
LineRead ReadLine(std::istream& in, std::string& line);

/// The JSON value that a line holds. A number that no double holds (1e999) becomes an object that no argument takes, so
/// that the one request that it stands in is refused. Raises RpcError: ParseError for what is no JSON, InvalidRequest
/// for what is nested more deeply, or has objects with more members, than any request.
Json ParseRequest(const std::string& line);

}  // namespace tavi::host
