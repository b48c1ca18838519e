#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "SourceDirectory.h"
#include "facade/arguments/BadArguments.h"
#include "facade/operations/OperationTable.h"

namespace tavi {
namespace {

using testing::BadArgumentOperation;
using testing::BadArgumentOperations;
using testing::BadCall;

struct Argument {
  std::string operation;
  std::string name;
};

/// The arguments that are passed in and have more than two values, by the table of operations.
std::vector<Argument> ListedArguments() {
  std::ifstream table(TAVI_SOURCE_DIR "/src/facade/operations/operations.txt");
  const std::vector<operations::Class> classes = operations::ReadTable(table);
  std::vector<Argument> listed;
  for (const operations::Operation& operation : classes.front().operations) {
    for (const operations::Argument& argument : operation.arguments) {
      const bool isObject = argument.type == operations::FindType("HandiCalcSettings");
      const bool hasTwoValues = argument.type == operations::FindType("boolean");
      const bool isPassedIn = argument.direction != operations::Direction::Out;
      if (isPassedIn && !isObject && !hasTwoValues) listed.push_back({operation.name, argument.name});
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
  EXPECT_GT(listed.size(), 80U) << "the table is not understood";
  for (const Argument& argument : listed) {
    EXPECT_TRUE(IsTried(operations, argument)) << argument.operation << ", " << argument.name;
  }
}

}  // namespace
}  // namespace tavi
