#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "SourceDirectory.h"
#include "facade/arguments/BadArguments.h"
#include "platform/values/Text.h"

namespace tavi {
namespace {

using testing::BadArgumentOperation;
using testing::BadArgumentOperations;
using testing::BadCall;

struct Argument {
  std::string operation;
  std::string name;
};

/// Of what the page says behind the name of an argument.
bool IsPassedInWithMoreThanTwoValues(const std::string& description) {
  const auto kinds = {"text", "double", "date", "16-bit", "32-bit"};
  return std::any_of(kinds.begin(), kinds.end(),
                     [&](const std::string& kind) { return description.starts_with(" " + kind + " in"); });
}

/// The arguments that are passed in and have more than two values, by the page that lists every operation (which a
/// script compares with the public class).
std::vector<Argument> ListedArguments() {
  std::ifstream page(TAVI_SOURCE_DIR "/docs/operations.md");
  std::vector<Argument> listed;
  std::string section;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("## ")) section = line.substr(3);
    // A row is | `Operation` | result | `argument` kind in, ... | and more.
    const std::vector<std::string> cells = Split(line, '|');
    if (section != "MembershipDatabase" || cells.size() < 5 || !cells[1].starts_with(" `")) continue;
    const std::vector<std::string> pieces = Split(cells[3], '`');
    for (std::size_t name = 1; name + 1 < pieces.size(); name += 2) {
      if (IsPassedInWithMoreThanTwoValues(pieces[name + 1])) listed.push_back({Split(cells[1], '`')[1], pieces[name]});
    }
  }
  return listed;
}

bool IsTried(const std::vector<BadArgumentOperation>& operations, const Argument& wanted) {
  return std::any_of(operations.begin(), operations.end(), [&](const BadArgumentOperation& operation) {
    return operation.name == wanted.operation &&
           std::any_of(operation.arguments.begin(), operation.arguments.end(), [&](const std::vector<BadCall>& calls) {
             return !calls.empty() && calls.front().what.starts_with(wanted.name);
           });
  });
}

TEST(BadArgumentTable, HasEveryArgumentOfEveryOperation) {
  const std::vector<BadArgumentOperation> operations = BadArgumentOperations();
  const std::vector<Argument> listed = ListedArguments();
  EXPECT_GT(listed.size(), 80U) << "the page is not understood";
  for (const Argument& argument : listed) {
    EXPECT_TRUE(IsTried(operations, argument)) << argument.operation << ", " << argument.name;
  }
}

}  // namespace
}  // namespace tavi
