#include "host/sql/LineSource.h"

#include <istream>

namespace tavi::host {
namespace {

// Editors of Windows put it before UTF-8 text.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

std::optional<std::string> StreamLines::Next(const std::string& /*prompt*/) {
  std::string line;
  if (!std::getline(in_, line)) return std::nullopt;
  // Further down it would be a part of a text.
  if (isFirst_ && line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
  isFirst_ = false;
  return line;
}

}  // namespace tavi::host
