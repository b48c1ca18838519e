#pragma once

#include <string_view>
#include <utility>

#include "platform/windows/Com.h"

namespace tavi::automation {

/// Owns one automation value.
class Variant {
 public:
  Variant() noexcept { ::VariantInit(&value_); }
  /// A text. Raises std::bad_alloc when there is no memory.
  explicit Variant(std::string_view text) : Variant() {
    value_.bstrVal = windows::AutomationText(text).Detach();
    value_.vt = VT_BSTR;
  }
  /// An object; takes the reference over.
  explicit Variant(IDispatch* object) noexcept : Variant() {
    value_.pdispVal = object;
    value_.vt = VT_DISPATCH;
  }
  ~Variant() { ::VariantClear(&value_); }
  Variant(Variant&& other) noexcept : value_(other.value_) { ::VariantInit(&other.value_); }
  Variant& operator=(Variant&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;

  [[nodiscard]] const VARIANT& Get() const { return value_; }
  /// For calls that put a value in.
  [[nodiscard]] VARIANT* Address() { return &value_; }

 private:
  VARIANT value_;
};

// The system's calls take values that they only read as if they could change them.

/// True for a reference that leads nowhere, which the system's calls would follow.
inline bool IsNullReference(const VARIANT& value) {
  return (value.vt & VT_BYREF) != 0 && value.byref == nullptr;
}

/// Copies a value, following a reference; the old value of `target` is cleared.
inline HRESULT CopyVariant(VARIANT* target, const VARIANT& source) {
  if (IsNullReference(source)) return E_INVALIDARG;
  return ::VariantCopyInd(target, const_cast<VARIANT*>(&source));
}

/// Copies a value as one of another type, by the usual rules of automation; an object gives its default property.
inline HRESULT ConvertVariant(VARIANT* target, const VARIANT& source, VARTYPE type) {
  const bool isNoObject = source.vt == VT_DISPATCH && source.pdispVal == nullptr;
  if (isNoObject || IsNullReference(source)) return DISP_E_TYPEMISMATCH;
  const HRESULT result = ::VariantChangeType(target, const_cast<VARIANT*>(&source), 0, type);
  return result == DISP_E_BADVARTYPE ? DISP_E_TYPEMISMATCH : result;
}

/// True for what a caller passes in the place of an argument that it leaves out.
inline bool IsMissing(const VARIANT& value) {
  return value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND;
}

/// The value itself where a reference to one was passed.
inline const VARIANT& Referred(const VARIANT& value) {
  const bool isReference = value.vt == (VT_BYREF | VT_VARIANT) && value.pvarVal != nullptr;
  return isReference ? *value.pvarVal : value;
}

}  // namespace tavi::automation
