#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/ado/Provider.h"
#include "platform/values/Error.h"

namespace tavi::testing {

/// Sees every statement and record set that goes to a provider, and can refuse it by throwing.
struct StatementWatch {
  /// Called before the statement reaches the provider.
  std::function<void(const std::string& statement)> before;
  std::vector<std::string> statements;

  /// From now on, the next `times` statements that contain `text` fail with `error`.
  void FailOn(const std::string& text, const Error& error, int times = 1);
  /// How many statements began with a text.
  [[nodiscard]] int CountOf(const std::string& beginning) const;
};

/// A provider that shows everything to a watch before it passes it on.
std::shared_ptr<const ado::Provider> MakeWatchedProvider(std::shared_ptr<const ado::Provider> provider,
                                                         std::shared_ptr<StatementWatch> watch);

}  // namespace tavi::testing
