#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>

#include "SourceDirectory.h"
#include "facade/arguments/BadArguments.h"

namespace tavi {
namespace {

using testing::BadArgumentOperation;
using testing::BadArgumentOperations;
using testing::BadCall;

struct Argument {
  std::string operation;
  std::string name;
};

/// The arguments that are passed in and have more than two values, by the page that lists every operation (which a
/// script compares with the public class).
std::vector<Argument> ListedArguments() {
  std::ifstream page(TAVI_SOURCE_DIR "/docs/operations.md");
  const std::regex row(R"(^\| `(\w+)` \| \w+ \| ([^|]*) \|.*)");
  const std::regex argument(R"(`(\w+)` (text|double|date|16-bit|32-bit) in)");
  std::vector<Argument> listed;
  std::string section;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("## ")) section = line.substr(3);
    std::smatch match;
    if (section != "MembershipDatabase" || !std::regex_match(line, match, row)) continue;
    const std::string arguments = match[2];
    for (std::sregex_iterator found(arguments.begin(), arguments.end(), argument), end; found != end; ++found) {
      listed.push_back({match[1], (*found)[1]});
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
