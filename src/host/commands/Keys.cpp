#include "host/commands/Keys.h"

#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "host/text/Table.h"

namespace tavi::host {
namespace {

std::optional<NameKeyMode> ModeOf(std::string_view word) {
  if (word == "first") return NameKeyMode::FirstName;
  if (word == "last") return NameKeyMode::Surname;
  return std::nullopt;
}

}  // namespace

int WriteKeys(const Context& context) {
  std::string line;
  for (std::size_t number = 1; std::getline(context.in, line); ++number) {
    if (line.ends_with('\r')) line.pop_back();
    const std::size_t tab = line.find('\t');
    const std::optional<NameKeyMode> mode = ModeOf(std::string_view(line).substr(0, tab));
    if (tab == std::string::npos || !mode) {
      context.error << "tavi: line " << number << " is \"" << Printable(line)
                    << "\"; expected \"first\" or \"last\", a tab and a name\n";
      return kFailed;
    }
    context.out << context.platform->nameKeyService->Key(*mode, std::string_view(line).substr(tab + 1)) << '\n';
  }
  return kSucceeded;
}

}  // namespace tavi::host
