#pragma once

#include <span>
#include <string_view>

#include "access/sql/expression/Evaluator.h"
#include "access/sql/parse/Expression.h"

namespace tavi::access::sql {

/// The function of a name in any case, with or without a $ at its end (Left$); nothing when there is none. Functions
/// live as long as the program.
const Function* FindFunction(std::string_view name);

/// For the tables below.
inline constexpr auto kPropagate = Function::Nulls::Propagate;
using Gives = Function::Result;

/// The tables that FindFunction looks through, by subject.
std::span<const Function> TextFunctions();
std::span<const Function> NumberFunctions();
std::span<const Function> ConversionFunctions();
std::span<const Function> DateFunctions();
std::span<const Function> LogicFunctions();

}  // namespace tavi::access::sql
