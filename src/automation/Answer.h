#pragma once

#include <windows.h>

#include <tuple>

namespace tavi::automation {

/// Turns the exception that is being handled into a result, and leaves number, source and description as the thread's
/// rich error information. Never throws.
HRESULT ResultOfException() noexcept;

/// A failure that its number says enough about. What an earlier failure left as the thread's error information must not
/// be taken for this one's.
HRESULT WithoutInformation(HRESULT result) noexcept;

namespace detail {

template <typename... Pointers>
bool AnyIsNull(Pointers*... pointers) {
  return (false || ... || (pointers == nullptr));
}

template <typename... Pointers>
void ClearLast(Pointers*... pointers) {
  if constexpr (sizeof...(pointers) > 0) *std::get<sizeof...(pointers) - 1>(std::tuple(pointers...)) = {};
}

}  // namespace detail

/// What every operation of the server runs in: no exception leaves it. `pointers` are the caller's variables for what
/// is passed back, the one for the result last; without one of them the answer is E_POINTER. The result's is cleared
/// first.
template <typename Body, typename... Pointers>
HRESULT Answer(Body body, Pointers*... pointers) noexcept {
  if (detail::AnyIsNull(pointers...)) return WithoutInformation(E_POINTER);
  detail::ClearLast(pointers...);
  try {
    body();
    return S_OK;
  } catch (...) {
    return ResultOfException();
  }
}

}  // namespace tavi::automation
