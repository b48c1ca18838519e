#pragma once

#include <string_view>

namespace tavi {

/// The full first name that a common English short form stands for, in capital letters without accents; empty for names
/// that are no short form, or one of several unlike names.
std::string_view FullFormOf(std::string_view plainLetters);

}  // namespace tavi
