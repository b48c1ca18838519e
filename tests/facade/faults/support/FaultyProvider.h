#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ado/Provider.h"
#include "platform/values/Error.h"

namespace tavi::testing {

/// One call that the component made of its database provider.
struct ProviderCall {
  enum class Kind {
    Open,
    Execute,
    OpenRecordset,
    OpenSchema,
    MoveNext,
    MovePrevious,
    AddNew,
    Set,
    Update,
    CloseRecordset,
    BeginTrans,
    CommitTrans,
    CloseConnection
  };
  Kind kind = Kind::Open;
  /// The statement, table, field or connection string.
  std::string text;

  [[nodiscard]] bool Asks(const std::string& beginning) const {
    return (kind == Kind::Execute || kind == Kind::OpenRecordset) && text.starts_with(beginning);
  }
};

/// The call as a person reads it: "Update", "Execute Delete from Results ...".
std::string Description(const ProviderCall& call);

using ProviderCalls = std::vector<ProviderCall>;

/// Which call of a provider fails, and what was called. A failing call does not reach the provider.
class FaultPlan {
 public:
  /// Begins to count anew; nothing fails.
  void Start();
  /// Begins to count anew; the call of this number (1 is the first) fails with the error.
  void FailAt(std::size_t number, const Error& error);
  /// Begins to count anew; every call that `chooses` fails, the first `times` times.
  void FailWhere(const std::function<bool(const ProviderCall&)>& chooses, const Error& error, int times);
  /// Called before each call that counts; what it asks of other connections does not count.
  std::function<void()> before;

  [[nodiscard]] const ProviderCalls& Calls() const { return calls_; }
  /// What the provider tells of each call before it makes it.
  void Note(ProviderCall::Kind kind, std::string_view text);

 private:
  ProviderCalls calls_;
  std::function<bool(const ProviderCall&)> chooses_;
  std::optional<Error> error_;
  int failuresLeft_ = 0;
};

/// A provider whose calls fail as planned.
std::shared_ptr<const ado::Provider> MakeFaultyProvider(std::shared_ptr<const ado::Provider> provider,
                                                        std::shared_ptr<FaultPlan> plan);

}  // namespace tavi::testing
