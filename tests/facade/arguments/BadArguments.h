#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "facade/MembershipDatabase.h"

namespace tavi::testing {

/// One call of an operation with one bad value in one of its arguments.
struct BadCall {
  std::string what;  ///< the argument and the kind of value
  std::function<void(MembershipDatabase&)> call;
};

/// An operation of the public class with the bad values that each of its arguments is given in turn.
struct BadArgumentOperation {
  std::string name;
  std::vector<std::vector<BadCall>> arguments;
  /// What comes before each call; none: nothing.
  std::function<void(MembershipDatabase&)> preparation = nullptr;
  /// How many uses more than before the file is open afterwards.
  int usesLeft = 0;
  /// The same after an error.
  int usesLeftByError = 0;
};

inline std::ostream& operator<<(std::ostream& out, const BadArgumentOperation& operation) {
  return out << operation.name;
}

/// Every operation and property with arguments. The calls expect members 1 and 2, a regular pair, and the competition
/// 1, "Tuesday", of 17 September 2025.
std::vector<BadArgumentOperation> BadArgumentOperations();

}  // namespace tavi::testing
