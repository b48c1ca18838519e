#pragma once

#include <cstdint>

/// The formats in which the command asks for names, out of those that operations.md lists.
namespace tavi::host {

inline constexpr std::int16_t kFirstAndLastName = 5;
inline constexpr std::int16_t kFamiliarName = 9;
inline constexpr std::int16_t kSurnameFirst = 10;

}  // namespace tavi::host
