#pragma once

#include <string>
#include <string_view>

namespace tavi {

/// The letters A to Z of a name in upper case: accents are dropped, letters such as "Æ" and "ß" written as two,
/// everything else (blanks, hyphens, apostrophes, digits, letters of other scripts) left out.
std::string PlainLetters(std::string_view name);

}  // namespace tavi
