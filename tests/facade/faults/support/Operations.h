#pragma once

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "facade/MembershipDatabase.h"
#include "facade/faults/support/FaultyProvider.h"

namespace tavi::testing {

/// How far an operation came: the calls that it made of the provider, and whether the last one failed.
struct Progress {
  int openCountBefore = 0;
  ProviderCalls calls;
  bool failed = false;

  /// How many calls asked a statement or table that begins with a text.
  [[nodiscard]] int CountOf(const std::string& beginning) const;
  /// True when the last call failed and was of this kind.
  [[nodiscard]] bool FailedIn(ProviderCall::Kind kind) const { return failed && calls.back().kind == kind; }
};

/// What a faulty call means for the caller of an operation.
enum class ErrorFate {
  Reaches,  ///< the caller sees the provider's error
  Hidden    ///< the operation goes on and succeeds
};

/// A public operation, called on the club of FaultyClub, and what it promises about errors.
struct Operation {
  /// Name of the operation, with _get or _let for a property and perhaps _ and what is special about the call.
  std::string name;
  /// Calls it; what it returns and passes back, as text.
  std::function<std::string(MembershipDatabase&)> call;
  /// What is done before, without faults.
  std::function<void(MembershipDatabase&)> prepare = [](MembershipDatabase&) {};
  /// What becomes of an error of the last call made.
  std::function<ErrorFate(const Progress&)> fate = [](const Progress&) { return ErrorFate::Reaches; };
  /// The store's open count afterwards.
  std::function<int(const Progress&)> openCount = [](const Progress& progress) { return progress.openCountBefore; };
  /// True when an error leaves nothing of it, however many statements it takes.
  bool isAllOrNothing = false;
  /// False when a second attempt after a failure may store more than one undisturbed call does.
  bool isRepeatable = true;
  /// The description of the component's own error that a second attempt raises when finished statements of the first
  /// one stand against it.
  std::string refusal = {};
};

/// All operations that reach the file, some of them with several arguments.
std::vector<Operation> Operations();

inline std::ostream& operator<<(std::ostream& stream, const Operation& operation) {
  return stream << operation.name;
}

}  // namespace tavi::testing
