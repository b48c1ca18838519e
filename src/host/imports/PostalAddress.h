#pragma once

#include <optional>
#include <string>

namespace tavi::host {

/// An address as a file gives it. The club's file keeps the town as the last line of the address.
struct WrittenAddress {
  std::optional<std::string> address;  ///< nothing where the file lacks the column
  std::optional<std::string> town;     ///< likewise
};

/// The lines of the stored address with what the file says put in; lines are separated by CR LF. Without the column
/// `town` the last of several stored lines stays; without `address` all lines stay but the last of several, and of more
/// than two lines none is emptied, because nobody can tell which is the town. Doing it again changes nothing.
std::string ChangedAddress(const std::string& stored, const WrittenAddress& written);

}  // namespace tavi::host
