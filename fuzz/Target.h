#pragma once

#include <cstddef>
#include <cstdint>

/// What a fuzz target defines: uses the bytes of one input in all ways. Input that is wrong is refused inside; whatever
/// leaves the function (an exception, a signal) is a finding. Returns 0. The name is the one that libFuzzer calls.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
