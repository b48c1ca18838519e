#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "access/sql/parse/Statement.h"
#include "platform/values/Value.h"

namespace tavi::access::sql {

class Scope;

/// A built-in function of expressions. Aggregates (Count, Sum, ...) are none of them.
struct Function {
  /// What a Null among the arguments means.
  enum class Nulls : std::uint8_t {
    Propagate,  ///< the result is Null, the function is not called
    Refuse,     ///< ProviderTypeConflict ("Invalid use of Null."): the conversions CStr, CInt, ...
    Pass        ///< the function knows
  };
  /// The arguments' values; the scope for the time.
  using Call = Value (*)(std::span<const Value> arguments, const Scope& scope);
  /// The value of an argument.
  using Evaluation = Value (*)(const Expression& argument, const Scope& scope);
  /// The arguments themselves, for functions that evaluate only some of them (IIf, Switch, Choose).
  using LazyCall = Value (*)(std::span<const ExpressionPointer> arguments, const Scope& scope, Evaluation evaluate);

  std::string_view name;  ///< upper case
  std::uint8_t minimumArguments = 0;
  std::uint8_t maximumArguments = 0;  ///< kAnyNumber: no limit
  Nulls nulls = Nulls::Propagate;
  Call call = nullptr;
  LazyCall lazyCall = nullptr;  ///< instead of `call`

  static constexpr std::uint8_t kAnyNumber = 255;
  [[nodiscard]] bool Accepts(std::size_t count) const {
    return count >= minimumArguments && (count <= maximumArguments || maximumArguments == kAnyNumber);
  }
};

/// Finds the function of a name in any case, with or without a $ at its end (Left$); null when there is none. What the
/// parser knows of functions: who parses brings it along.
using FunctionFinder = const Function* (*)(std::string_view name);

}  // namespace tavi::access::sql
