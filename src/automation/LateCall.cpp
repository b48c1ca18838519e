#include "automation/LateCall.h"

#include <cstring>

namespace tavi::automation {
namespace {

/// Finds the description of the operation that a call means, and gives it back at the end.
class Description {
 public:
  Description(ITypeInfo& information, DISPID member, WORD flags) : information_(information) {
    FUNCDESC* candidate = nullptr;
    for (UINT index = 0; SUCCEEDED(information.GetFuncDesc(index, &candidate)); ++index) {
      if (candidate->memid == member && (candidate->invkind & flags) != 0) {
        found_ = candidate;
        return;
      }
      information.ReleaseFuncDesc(candidate);
    }
  }
  ~Description() {
    if (found_ != nullptr) information_.ReleaseFuncDesc(found_);
  }
  Description(const Description&) = delete;
  Description& operator=(const Description&) = delete;
  [[nodiscard]] const FUNCDESC* Get() const { return found_; }

 private:
  ITypeInfo& information_;
  FUNCDESC* found_ = nullptr;
};

/// The number of bytes of a value of a simple type; 0 for others.
std::size_t SizeOf(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      return 8;
    default:
      return 0;
  }
}

/// Puts a value into the caller's variable of whatever type.
HRESULT Store(const VARIANT& variable, const VARIANT& value) {
  if (variable.vt == (VT_BYREF | VT_VARIANT)) return CopyVariant(variable.pvarVal, value);
  const auto type = static_cast<VARTYPE>(variable.vt & ~VT_BYREF);
  Variant converted;
  const HRESULT result = ConvertVariant(converted.Address(), value, type);
  if (FAILED(result)) return result;
  if (type == VT_BSTR) {
    std::swap(*variable.pbstrVal, converted.Address()->bstrVal);
    return S_OK;
  }
  if (SizeOf(type) == 0) return DISP_E_BADVARTYPE;
  std::memcpy(variable.byref, &converted.Get().llVal, SizeOf(type));
  return S_OK;
}

}  // namespace

LateCall::LateCall(ITypeInfo& information, DISPID member, WORD flags, DISPPARAMS& parameters)
    : information_(information), member_(member), flags_(flags), given_(parameters), fitted_(parameters) {}

HRESULT LateCall::Prepare(UINT* badArgument) {
  const Description description(information_, member_, flags_);
  if (description.Get() == nullptr) return DISP_E_MEMBERNOTFOUND;
  const int count = description.Get()->cParams;
  arguments_.assign(given_.rgvarg, given_.rgvarg + given_.cArgs);
  variables_.resize(given_.cArgs);
  fitted_.rgvarg = arguments_.data();
  for (UINT position = 0; position < given_.cArgs; ++position) {
    const int parameter = ParameterOf(position, count);
    if (parameter < 0 || parameter >= count) continue;  // the call itself refuses it
    const HRESULT result = Fit(position, description.Get()->lprgelemdescParam[parameter]);
    if (FAILED(result)) {
      if (badArgument != nullptr) *badArgument = position;
      return result;
    }
  }
  return S_OK;
}

int LateCall::ParameterOf(UINT position, int parameterCount) const {
  if (position >= given_.cNamedArgs) return static_cast<int>(given_.cArgs - 1 - position);
  const DISPID name = given_.rgdispidNamedArgs[position];
  return name == DISPID_PROPERTYPUT ? parameterCount - 1 : static_cast<int>(name);
}

HRESULT LateCall::Fit(UINT position, const ELEMDESC& parameter) {
  VARIANT& argument = arguments_[position];
  const VARIANT& value = Referred(given_.rgvarg[position]);
  if (IsMissing(value)) {
    if ((parameter.paramdesc.wParamFlags & PARAMFLAG_FHASDEFAULT) != 0) {
      argument = parameter.paramdesc.pparamdescex->varDefaultValue;
      // The description goes before the call.
      const HRESULT result = CopyVariant(variables_[position].Address(), argument);
      argument = variables_[position].Get();
      return result;
    }
    return (parameter.paramdesc.wParamFlags & PARAMFLAG_FOPT) != 0 ? S_OK : DISP_E_PARAMNOTOPTIONAL;
  }
  if (parameter.tdesc.vt == VT_PTR &&
      SizeOf(parameter.tdesc.lptdesc->vt) + (parameter.tdesc.lptdesc->vt == VT_BSTR) > 0) {
    return FitReference(position, parameter.tdesc.lptdesc->vt);
  }
  argument = value;
  return S_OK;
}

HRESULT LateCall::FitReference(UINT position, VARTYPE type) {
  const VARIANT& given = given_.rgvarg[position];
  if (given.vt == (VT_BYREF | type)) return S_OK;
  VARIANT* variable = variables_[position].Address();
  const HRESULT result = ConvertVariant(variable, Referred(given), type);
  if (FAILED(result)) return result;
  VARIANT& argument = arguments_[position];
  argument.vt = static_cast<VARTYPE>(VT_BYREF | type);
  argument.byref = type == VT_BSTR ? static_cast<void*>(&variable->bstrVal) : static_cast<void*>(&variable->llVal);
  return S_OK;
}

HRESULT LateCall::PassBack() {
  HRESULT result = S_OK;
  for (UINT position = 0; position < given_.cArgs; ++position) {
    const VARIANT& given = given_.rgvarg[position];
    const bool isOurs = (arguments_[position].vt & VT_BYREF) != 0 && variables_[position].Get().vt != VT_EMPTY;
    if (!isOurs || (given.vt & VT_BYREF) == 0) continue;
    const HRESULT stored = Store(given, variables_[position].Get());
    if (FAILED(stored)) result = stored;
  }
  return result;
}

HRESULT MakeReadableForScripts(VARIANT* result) {
  if (result == nullptr || result->vt != (VT_ARRAY | VT_I4)) return S_OK;
  LONG first = 0;
  LONG last = -1;
  ::SafeArrayGetLBound(result->parray, 1, &first);
  ::SafeArrayGetUBound(result->parray, 1, &last);
  SAFEARRAY* readable = ::SafeArrayCreateVector(VT_VARIANT, first, static_cast<ULONG>(last - first + 1));
  if (readable == nullptr) return E_OUTOFMEMORY;
  for (LONG index = first; index <= last; ++index) {
    VARIANT element{};
    element.vt = VT_I4;
    ::SafeArrayGetElement(result->parray, &index, &element.lVal);
    ::SafeArrayPutElement(readable, &index, &element);
  }
  ::VariantClear(result);
  result->vt = VT_ARRAY | VT_VARIANT;
  result->parray = readable;
  return S_OK;
}

}  // namespace tavi::automation
