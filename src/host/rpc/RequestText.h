#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

#include "host/rpc/JsonValues.h"

namespace tavi::host {

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
