#pragma once

#include <type_traits>

namespace tavi::operations {

/// An argument as the table of operations tells it: a reference when it is passed back, else a value.
template <typename Parameter>
using ArgumentOf =
    std::conditional_t<std::is_lvalue_reference_v<Parameter> && !std::is_const_v<std::remove_reference_t<Parameter>>,
                       Parameter, std::remove_cvref_t<Parameter>>;

/// The type of a pointer to a member as a function of values: `double(std::string, std::int32_t&)`. A variable is a
/// function without arguments.
template <typename Member>
struct Signature;
template <typename Class, typename Result, typename... Parameters>
struct Signature<Result (Class::*)(Parameters...)> {
  using Type = std::remove_cvref_t<Result>(ArgumentOf<Parameters>...);
};
template <typename Class, typename Result, typename... Parameters>
struct Signature<Result (Class::*)(Parameters...) const> {
  using Type = std::remove_cvref_t<Result>(ArgumentOf<Parameters>...);
};
template <typename Class, typename Variable>
requires(!std::is_function_v<Variable>) struct Signature<Variable Class::*> {
  using Type = Variable();
};

template <typename Member>
using SignatureOf = typename Signature<Member>::Type;

}  // namespace tavi::operations
