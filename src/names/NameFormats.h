#pragma once

#include <cstdint>

/// The codes of the formats in which names are shown.
namespace tavi::name_format {

inline constexpr std::int16_t kFirstNameOnly = 1;
inline constexpr std::int16_t kInitialsOnly = 2;
inline constexpr std::int16_t kSurnameOnly = 3;
inline constexpr std::int16_t kFirstNameWithInitials = 4;
inline constexpr std::int16_t kFirstAndLast = 5;
inline constexpr std::int16_t kFirstAndLastIfUnique = 6;
inline constexpr std::int16_t kInFull = 7;
inline constexpr std::int16_t kFirstAndLetter = 8;
inline constexpr std::int16_t kFamiliar = 9;
inline constexpr std::int16_t kSurnameFirst = 10;

}  // namespace tavi::name_format
