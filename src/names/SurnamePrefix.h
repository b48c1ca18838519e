#pragma once

#include <string>

namespace tavi {

/// Writes the beginning of a surname in one way: Mac, Mc and M' as Mc, a K sound after them once, Saint as St.
/// Takes and gives plain capital letters.
std::string WithPlainPrefix(std::string letters);

}  // namespace tavi
