// All built-in functions, sorted by name when the first is looked for; a look-up is a binary search, and takes place
// while a statement is parsed, never for a row.
#include "access/sql/expression/Functions.h"

#include <algorithm>
#include <string>
#include <vector>

namespace tavi::access::sql {
namespace {

std::vector<const Function*> AllByName() {
  std::vector<const Function*> all;
  for (const std::span<const Function> table :
       {TextFunctions(), NumberFunctions(), ConversionFunctions(), DateFunctions(), LogicFunctions()}) {
    for (const Function& function : table) all.push_back(&function);
  }
  std::sort(all.begin(), all.end(),
            [](const Function* left, const Function* right) { return left->name < right->name; });
  return all;
}

/// Names of functions are ASCII; anything else is found nowhere.
std::string UpperAscii(std::string_view name) {
  std::string upper(name);
  for (char& character : upper) {
    if (character >= 'a' && character <= 'z') character = static_cast<char>(character - 'a' + 'A');
  }
  return upper;
}

}  // namespace

const Function* FindFunction(std::string_view name) {
  // Made by the first that asks, whichever thread it is.
  static const std::vector<const Function*> kFunctions = AllByName();
  // The same function: the sign tells Access that a text is wanted and not a variant.
  if (name.ends_with('$')) name.remove_suffix(1);
  const std::string upper = UpperAscii(name);
  const auto found =
      std::lower_bound(kFunctions.begin(), kFunctions.end(), upper,
                       [](const Function* function, const std::string& wanted) { return function->name < wanted; });
  return found != kFunctions.end() && (*found)->name == upper ? *found : nullptr;
}

}  // namespace tavi::access::sql
