#pragma once

#include <TaviMembership.h>

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/Variant.h"
#include "facade/MembershipDatabase.h"

/// Between automation types and the system's values. Texts are UTF-8 here and UTF-16 there.
namespace tavi::automation {

inline std::string ToText(BSTR text) {
  return windows::AutomationText::ToUtf8(text);
}

inline bool ToBool(VARIANT_BOOL value) {
  return value != VARIANT_FALSE;
}

inline VARIANT_BOOL FromBool(bool value) {
  return value ? VARIANT_TRUE : VARIANT_FALSE;
}

/// An argument that may be left out: nothing then, or when it is empty. Raises TypeMismatch when it is no number.
std::optional<double> OptionalDouble(const VARIANT& value);

/// The settings of an object: shared with it when it is one of ours, else a copy of what it says; none of a null one.
/// Raises the error of an object that cannot say.
std::shared_ptr<HandiCalcSettings> SettingsOf(_HandiCalcSettings* object);

/// A property of an object of anybody's. Raises its error when it cannot say.
template <typename Object, typename Value>
Value Ask(Object& object, HRESULT (STDMETHODCALLTYPE Object::*get)(Value*)) {
  Value value{};
  windows::Require((object.*get)(&value), "A property cannot be read from its object");
  return value;
}

// Each puts a result where the caller wants it.
inline void Return(VARIANT_BOOL* result, bool value) {
  *result = FromBool(value);
}
inline void Return(long* result, std::int32_t value) {
  *result = value;
}
inline void Return(short* result, std::int16_t value) {
  *result = value;
}
inline void Return(double* result, double value) {
  *result = value;
}
inline void Return(BSTR* result, const std::string& value) {
  *result = windows::AutomationText(value).Detach();
}
inline void Return(VARIANT* result, const std::string& value) {
  result->bstrVal = windows::AutomationText(value).Detach();
  result->vt = VT_BSTR;
}

// New objects, which belong to the caller then. They raise std::bad_alloc.
/// An array with the bounds of the list.
void Return(SAFEARRAY** result, const MatchList& list);
/// A collection of texts, each its own key.
void Return(_Collection** result, const std::vector<std::string>& texts);
void Return(_Collection** result, const std::vector<EBUMembershipDetails>& rows);
void Return(_HandiCalcSettings** result, const HandiCalcSettings& settings);
void Return(_Handicaps** result, const Handicaps& handicaps);
void Return(_EBUMembershipDetails** result, const EBUMembershipDetails& details);

/// An argument that is passed back: an operation changes its value, and when the operation has succeeded the caller's
/// variable gets it.
template <typename Outside, typename Inside>
class PassedBack {
 public:
  PassedBack(Outside* variable, Inside value) : variable_(variable), value_(std::move(value)) {}
  ~PassedBack() noexcept(false) {
    if (std::uncaught_exceptions() == exceptions_) Store();
  }
  PassedBack(const PassedBack&) = delete;
  PassedBack& operator=(const PassedBack&) = delete;
  // NOLINTNEXTLINE(google-explicit-constructor): it stands for the argument.
  operator Inside&() { return value_; }

 private:
  void Store() {
    if constexpr (std::is_same_v<Outside, BSTR>) {
      BSTR text = windows::AutomationText(value_).Detach();
      ::SysFreeString(std::exchange(*variable_, text));
    } else {
      Return(variable_, value_);
    }
  }

  Outside* variable_;
  Inside value_;
  int exceptions_ = std::uncaught_exceptions();
};

inline PassedBack<BSTR, std::string> Out(BSTR* variable) {
  return {variable, ToText(*variable)};
}
inline PassedBack<long, std::int32_t> Out(long* variable) {
  return {variable, static_cast<std::int32_t>(*variable)};
}
inline PassedBack<double, double> Out(double* variable) {
  return {variable, *variable};
}
inline PassedBack<VARIANT_BOOL, bool> Out(VARIANT_BOOL* variable) {
  return {variable, ToBool(*variable)};
}

}  // namespace tavi::automation
