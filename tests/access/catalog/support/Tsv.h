#pragma once

#include <span>
#include <string>

#include "platform/values/Value.h"

namespace tavi::access::test {

/// A value as the expected contents of the sample files write it: \N for null, plain numbers, ISO dates, escaped texts,
/// hexadecimal bytes (the digest of more than 256).
std::string TsvField(const Value& value);

/// The SHA-256 of bytes, 64 hexadecimal digits.
std::string Sha256(std::span<const std::uint8_t> bytes);

}  // namespace tavi::access::test
