#include "host/text/Figures.h"

#include <algorithm>

namespace tavi::host {

bool IsFigures(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string WithoutLeadingZeros(std::string_view number) {
  const std::size_t digit = number.find_first_not_of('0');
  return digit == std::string_view::npos ? std::string() : std::string(number.substr(digit));
}

}  // namespace tavi::host
