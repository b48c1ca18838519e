#include "automation/LateCall.h"

#include <cstring>

namespace tavi::automation {
namespace {

/// Finds the description of the operation that a call means, and gives it back at the end. Many languages know one kind
/// of assignment only: where a property is set to objects, an object that is assigned as a value is one that is set.
/// Some ask for an item of a collection, and for the walk over it, as a method, others as a property.
class Description {
 public:
  Description(ITypeInfo& information, DISPID member, WORD flags, bool givesObject) : information_(information) {
    Find(member, flags);
    const bool isObjectAssigned = (flags & DISPATCH_PROPERTYPUT) != 0 && givesObject;
    if (found_ == nullptr && isObjectAssigned) Find(member, DISPATCH_PROPERTYPUTREF);
    const bool isMemberOfCollections = member == DISPID_VALUE || member == DISPID_NEWENUM;
    const bool isCalled = (flags & DISPATCH_METHOD) != 0;
    if (found_ == nullptr && isMemberOfCollections && isCalled) Find(member, DISPATCH_PROPERTYGET);
  }
  ~Description() {
    if (found_ != nullptr) information_.ReleaseFuncDesc(found_);
  }
  Description(const Description&) = delete;
  Description& operator=(const Description&) = delete;
  [[nodiscard]] const FUNCDESC* Get() const { return found_; }

 private:
  void Find(DISPID member, WORD flags) {
    FUNCDESC* candidate = nullptr;
    for (UINT index = 0; SUCCEEDED(information_.GetFuncDesc(index, &candidate)); ++index) {
      if (candidate->memid == member && (candidate->invkind & flags) != 0) {
        found_ = candidate;
        return;
      }
      information_.ReleaseFuncDesc(candidate);
    }
  }

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

/// True for the types of variable that a value can be put into.
bool IsStorable(VARTYPE type) {
  return type == VT_VARIANT || type == VT_BSTR || SizeOf(type) != 0;
}

bool MayBeLeftOut(const ELEMDESC& parameter) {
  return (parameter.paramdesc.wParamFlags & (PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT)) != 0;
}

/// The type itself when it is one that values are converted to; else VT_EMPTY.
VARTYPE PlainType(VARTYPE type) {
  return type == VT_BSTR || SizeOf(type) != 0 ? type : static_cast<VARTYPE>(VT_EMPTY);
}

/// The type of the variable that an argument of this kind is passed back in; VT_EMPTY when it is not passed back.
VARTYPE PassedBackType(const ELEMDESC& parameter) {
  return parameter.tdesc.vt == VT_PTR ? PlainType(parameter.tdesc.lptdesc->vt) : static_cast<VARTYPE>(VT_EMPTY);
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
  if (!IsWellFormed()) return E_INVALIDARG;
  const Description description(information_, member_, flags_, GivesObject());
  if (description.Get() == nullptr) return DISP_E_MEMBERNOTFOUND;
  flags_ = static_cast<WORD>(description.Get()->invkind);
  arguments_.assign(given_.rgvarg, given_.rgvarg + given_.cArgs);
  variables_.resize(given_.cArgs);
  fitted_.rgvarg = arguments_.data();
  return FitAll(*description.Get(), badArgument);
}

bool LateCall::IsWellFormed() const {
  const bool hasArguments = given_.cArgs == 0 || given_.rgvarg != nullptr;
  const bool hasNames = given_.cNamedArgs == 0 || given_.rgdispidNamedArgs != nullptr;
  return hasArguments && hasNames && given_.cNamedArgs <= given_.cArgs;
}

/// Whether the value that a property is set to is an object.
bool LateCall::GivesObject() const {
  if (given_.cArgs == 0) return false;
  const VARTYPE type = Referred(given_.rgvarg[0]).vt;
  return type == VT_DISPATCH || type == VT_UNKNOWN;
}

HRESULT LateCall::FitAll(const FUNCDESC& operation, UINT* badArgument) {
  const int count = operation.cParams;
  if (given_.cArgs > static_cast<UINT>(count)) return DISP_E_BADPARAMCOUNT;
  std::vector<bool> isGiven(static_cast<std::size_t>(count), false);
  for (UINT position = 0; position < given_.cArgs; ++position) {
    const int parameter = ParameterOf(position, count);
    const bool exists = parameter >= 0 && parameter < count;
    const bool fits = exists && !isGiven[static_cast<std::size_t>(parameter)];
    const HRESULT result = fits ? Fit(position, operation.lprgelemdescParam[parameter]) : DISP_E_PARAMNOTFOUND;
    if (FAILED(result)) {
      if (badArgument != nullptr) *badArgument = position;
      return result;
    }
    isGiven[static_cast<std::size_t>(parameter)] = true;
  }
  for (int parameter = 0; parameter < count; ++parameter) {
    if (!isGiven[static_cast<std::size_t>(parameter)] && !MayBeLeftOut(operation.lprgelemdescParam[parameter])) {
      return DISP_E_BADPARAMCOUNT;
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
  const VARIANT& given = given_.rgvarg[position];
  if (IsNullReference(given)) return DISP_E_TYPEMISMATCH;
  const VARIANT& value = Referred(given);
  if (IsMissing(value)) return FitDefault(position, parameter);
  if (IsNullReference(value)) return DISP_E_TYPEMISMATCH;
  const VARTYPE passedBack = PassedBackType(parameter);
  if (passedBack != VT_EMPTY) return FitReference(position, passedBack);
  const VARTYPE type = PlainType(parameter.tdesc.vt);
  if (type != VT_EMPTY) return FitValue(position, value, type);
  arguments_[position] = value;
  return S_OK;
}

HRESULT LateCall::FitValue(UINT position, const VARIANT& value, VARTYPE type) {
  VARIANT* converted = variables_[position].Address();
  const HRESULT result = ConvertVariant(converted, value, type);
  arguments_[position] = *converted;
  return result;
}

HRESULT LateCall::FitDefault(UINT position, const ELEMDESC& parameter) {
  VARIANT& argument = arguments_[position];
  if ((parameter.paramdesc.wParamFlags & PARAMFLAG_FHASDEFAULT) != 0) {
    // A copy, because the description goes before the call.
    VARIANT* copy = variables_[position].Address();
    const HRESULT result = CopyVariant(copy, parameter.paramdesc.pparamdescex->varDefaultValue);
    argument = *copy;
    return result;
  }
  argument = Referred(given_.rgvarg[position]);
  return MayBeLeftOut(parameter) ? S_OK : DISP_E_PARAMNOTOPTIONAL;
}

HRESULT LateCall::FitReference(UINT position, VARTYPE type) {
  const VARIANT& given = given_.rgvarg[position];
  if (given.vt == (VT_BYREF | type)) return S_OK;
  if ((given.vt & VT_BYREF) != 0 && !IsStorable(static_cast<VARTYPE>(given.vt & ~VT_BYREF))) return DISP_E_TYPEMISMATCH;
  VARIANT* variable = variables_[position].Address();
  const HRESULT result = ConvertVariant(variable, Referred(given), type);
  if (FAILED(result)) {
    // No operation asks what is in a variable that it passes a value back in. What a script left there from something
    // else is no error; a variable that is declared with another type is.
    if (given.vt != (VT_BYREF | VT_VARIANT)) return result;
    *variable = VARIANT{};
    variable->vt = type;
  }
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
