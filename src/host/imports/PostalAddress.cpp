#include "host/imports/PostalAddress.h"

#include <string_view>

namespace tavi::host {
namespace {

constexpr const char* kLineBreak = "\r\n";

std::string WithLastLine(const std::string& lines, const std::string& last) {
  return lines + (lines.empty() || last.empty() ? "" : kLineBreak) + last;
}

/// Without empty lines at its end, which are no town.
std::string WithoutEmptyEnd(std::string text) {
  while (text.ends_with(kLineBreak)) text.resize(text.size() - std::string_view(kLineBreak).size());
  return text;
}

/// Where the last of several lines begins with its line break; npos when there is one line only.
std::size_t LastBreak(const std::string& text) {
  return text.rfind(kLineBreak);
}

std::string LastLine(const std::string& text) {
  const std::size_t at = LastBreak(text);
  return at == std::string::npos ? text : text.substr(at + 2);
}

std::string WithOtherAddress(const std::string& stored, const std::string& address) {
  const std::size_t at = LastBreak(stored);
  const bool holdsTown = at != std::string::npos && LastLine(address) != stored.substr(at + 2);
  return address.empty() || stored == address || !holdsTown ? address : WithLastLine(address, stored.substr(at + 2));
}

std::string WithOtherTown(const std::string& stored, const std::string& town) {
  const std::size_t at = LastBreak(stored);
  if (town.empty()) {
    const bool hasTwoLines = at != std::string::npos && stored.find(kLineBreak) == at;
    return hasTwoLines ? stored.substr(0, at) : stored;
  }
  if (LastLine(stored) == town) return stored;
  return WithLastLine(stored.substr(0, at), town);
}

}  // namespace

std::string ChangedAddress(const std::string& stored, const WrittenAddress& written) {
  const std::string lines = WithoutEmptyEnd(stored);
  const std::string changed = written.address && written.town ? WithLastLine(*written.address, *written.town)
                              : written.address               ? WithOtherAddress(lines, *written.address)
                              : written.town                  ? WithOtherTown(lines, *written.town)
                                                              : lines;
  return changed == lines ? stored : changed;
}

}  // namespace tavi::host
