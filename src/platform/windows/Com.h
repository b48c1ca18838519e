#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <string_view>
#include <utility>

#include "platform/values/Error.h"
#include "platform/values/WideText.h"

/// Owners of what automation calls hand out.
namespace tavi::windows {

/// Holds one reference to an interface.
template <typename Interface>
class ComPointer {
 public:
  ComPointer() = default;
  /// Takes over a reference.
  explicit ComPointer(Interface* reference) : pointer_(reference) {}
  ~ComPointer() { Reset(); }
  ComPointer(ComPointer&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ComPointer& operator=(ComPointer&& other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ComPointer(const ComPointer& other) : pointer_(other.pointer_) {
    if (pointer_ != nullptr) pointer_->AddRef();
  }
  ComPointer& operator=(const ComPointer&) = delete;

  [[nodiscard]] Interface* Get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }
  Interface& operator*() const { return *pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }
  /// Where a call puts a new reference; the old one is given back first.
  Interface** Receive() {
    Reset();
    return &pointer_;
  }
  /// The same as the untyped argument of creating and querying calls.
  void** ReceiveUntyped() {
    void* place = Receive();
    return static_cast<void**>(place);
  }
  /// Hands the reference over.
  [[nodiscard]] Interface* Detach() { return std::exchange(pointer_, nullptr); }
  void Reset() {
    if (Interface* old = std::exchange(pointer_, nullptr)) old->Release();
  }

 private:
  Interface* pointer_ = nullptr;
};

/// Holds one automation text.
class AutomationText {
 public:
  AutomationText() = default;
  /// Raises std::bad_alloc when there is no memory.
  explicit AutomationText(std::string_view utf8) : text_(Allocate(ToWide(utf8))) {}
  ~AutomationText() { ::SysFreeString(text_); }
  AutomationText(const AutomationText&) = delete;
  AutomationText& operator=(const AutomationText&) = delete;

  [[nodiscard]] BSTR Get() const { return text_; }
  BSTR* Receive() {
    ::SysFreeString(std::exchange(text_, nullptr));
    return &text_;
  }
  [[nodiscard]] BSTR Detach() { return std::exchange(text_, nullptr); }
  [[nodiscard]] std::string ToUtf8() const { return ToUtf8(text_); }
  /// A null text is the empty one; zero characters inside are kept.
  [[nodiscard]] static std::string ToUtf8(BSTR text) {
    return FromWide(std::wstring_view(text == nullptr ? L"" : text, ::SysStringLen(text)));
  }

 private:
  static BSTR Allocate(const std::wstring& text) {
    BSTR copy = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (copy == nullptr) throw std::bad_alloc();
    return copy;
  }

  BSTR text_ = nullptr;
};

/// Lets the calling thread use automation objects for the length of its life; a thread that is set up already keeps its
/// apartment. Destroy it on the same thread.
class ComApartment {
 public:
  ComApartment() : result_(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~ComApartment() {
    if (SUCCEEDED(result_)) ::CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;

 private:
  HRESULT result_;
};

/// Raises a failed result as an error with its own number and the text `action` + ": " + the system's reason.
inline void Require(HRESULT result, const std::string& action) {
  if (SUCCEEDED(result)) return;
  throw Error(static_cast<std::int32_t>(result), "TaviMembership",
              action + ": " + SystemErrorText(static_cast<unsigned long>(result)) + ".");
}

}  // namespace tavi::windows
