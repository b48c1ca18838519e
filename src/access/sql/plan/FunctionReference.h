#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace tavi::access::sql {

template <typename Signature>
class FunctionReference;

/// A reference to something callable, for parameters that are only called during the call. Costs no memory, unlike
/// std::function; must not outlive what it refers to.
template <typename Result, typename... Arguments>
class FunctionReference<Result(Arguments...)> {
 public:
  template <typename Callable>
  requires(!std::is_same_v<std::remove_cvref_t<Callable>, FunctionReference>)
      FunctionReference(Callable&& callable)  // NOLINT: lambdas are passed as they are
      // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): the call gives the constness back.
      : object_(const_cast<void*>(static_cast<const void*>(std::addressof(callable)))),
        call_([](void* object, Arguments... arguments) -> Result {
          return (*static_cast<std::remove_reference_t<Callable>*>(object))(std::forward<Arguments>(arguments)...);
        }) {}

  Result operator()(Arguments... arguments) const { return call_(object_, std::forward<Arguments>(arguments)...); }

 private:
  void* object_;
  Result (*call_)(void*, Arguments...);
};

}  // namespace tavi::access::sql
