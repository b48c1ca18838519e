#include "host/sql/LineSource.h"

#include <istream>

namespace tavi::host {

std::optional<std::string> StreamLines::Next(const std::string& /*prompt*/) {
  std::string line;
  if (!std::getline(in_, line)) return std::nullopt;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

}  // namespace tavi::host
