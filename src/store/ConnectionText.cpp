#include "store/ConnectionText.h"

#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi {
namespace {

/// A path as an item of the connection string: one that would end the item, or lose blanks in it, is put between
/// quotes, with those in it doubled.
std::string InConnectionText(const std::string& path) {
  if (path.find('\0') != std::string::npos) {
    throw Error(ErrorNumber::InvalidArgument, "cDatabase",
                "The folder's name holds a NUL character; choose another folder.");
  }
  const bool isPlain =
      path.find(';') == std::string::npos && path.find_first_of("\"'") != 0 && Trim(path).size() == path.size();
  if (isPlain) return path;
  return "\"" + ReplaceAll(path, "\"", "\"\"") + "\"";
}

}  // namespace

std::string ConnectionText(const std::string& path) {
  return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + InConnectionText(path);
}

}  // namespace tavi
