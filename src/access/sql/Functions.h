#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "access/sql/Evaluator.h"
#include "access/sql/Statement.h"
#include "platform/values/Value.h"

namespace tavi::access::sql {

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
  /// The arguments themselves, for functions that evaluate only some of them (IIf, Switch, Choose).
  using LazyCall = Value (*)(std::span<const ExpressionPointer> arguments, const Scope& scope);

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

/// For the tables below.
inline constexpr auto kPropagate = Function::Nulls::Propagate;

/// The function of a name in any case, with or without a $ at its end (Left$); nothing when there is none. Functions
/// live as long as the program.
const Function* FindFunction(std::string_view name);

/// The tables that FindFunction looks through, by subject.
std::span<const Function> TextFunctions();
std::span<const Function> NumberFunctions();
std::span<const Function> ConversionFunctions();
std::span<const Function> DateFunctions();
std::span<const Function> LogicFunctions();

}  // namespace tavi::access::sql
