#include "automation/LateCall.h"

#include <cstring>

// A call by name arrives as a list of variants that a script has, and the system's own dispatch wants the types of the
// type library. In between, here:
//
//   1. Description finds the operation; what kind of call it is may differ from what the caller said.
//   2. FitAll finds for each argument its parameter. Arguments stand in reverse order, those with names first,
//      the new value of a property among these.
//   3. Fit replaces each by one of the right type. A value is converted; for what is passed back the operation gets a
//      variable of ours, so that the script's stays as it is until the operation has succeeded.
//   4. After the call PassBack converts what is in our variables to the types of the script's.
//
// variables_ owns what was made; arguments_ refers to it, or to what the caller owns, and owns nothing.
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
    // What the caller said comes first: only where there is no such member the other reading is tried.
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
  /// Every description that is not the wanted one is given back at once.
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

/// The number of bytes of a value of a simple type, which owns nothing and can be copied as bytes; 0 for others.
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
/// A pointer to an interface gives VT_EMPTY, too: it is an object, which is passed as it is.
VARTYPE PassedBackType(const ELEMDESC& parameter) {
  return parameter.tdesc.vt == VT_PTR ? PlainType(parameter.tdesc.lptdesc->vt) : static_cast<VARTYPE>(VT_EMPTY);
}

/// Puts a value into the caller's variable of whatever type.
HRESULT Store(const VARIANT& variable, const VARIANT& value) {
  // A variable of no fixed type takes the value in the operation's own.
  if (variable.vt == (VT_BYREF | VT_VARIANT)) return CopyVariant(variable.pvarVal, value);
  const auto type = static_cast<VARTYPE>(variable.vt & ~VT_BYREF);
  Variant converted;
  const HRESULT result = ConvertVariant(converted.Address(), value, type);
  if (FAILED(result)) return result;
  if (type == VT_BSTR) {
    // The old text goes with `converted`.
    std::swap(*variable.pbstrVal, converted.Address()->bstrVal);
    return S_OK;
  }
  if (SizeOf(type) == 0) return DISP_E_BADVARTYPE;
  // The members of the union begin at the same place, whatever their size.
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
  // One kind from here on: callers may say "method or property" at once, which the system's dispatch would have to
  // guess at.
  flags_ = static_cast<WORD>(description.Get()->invkind);
  arguments_.assign(given_.rgvarg, given_.rgvarg + given_.cArgs);
  // To the final size before the first reference to a variable is made.
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
  // The result is no parameter here: the type library has it as what the operation returns.
  if (given_.cArgs > static_cast<UINT>(count)) return DISP_E_BADPARAMCOUNT;
  std::vector<bool> isGiven(static_cast<std::size_t>(count), false);
  for (UINT position = 0; position < given_.cArgs; ++position) {
    const int parameter = ParameterOf(position, count);
    const bool exists = parameter >= 0 && parameter < count;
    // A name that is not the operation's, or an argument given twice.
    const bool fits = exists && !isGiven[static_cast<std::size_t>(parameter)];
    const HRESULT result = fits ? Fit(position, operation.lprgelemdescParam[parameter]) : DISP_E_PARAMNOTFOUND;
    if (FAILED(result)) {
      // Counted as the caller's list is, from its last argument.
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

/// The parameter that a place of the caller's list is for, which may be none (negative, or too large). Names come first
/// in the list; behind them the arguments stand from last to first. A property's new value is its last parameter.
int LateCall::ParameterOf(UINT position, int parameterCount) const {
  if (position >= given_.cNamedArgs) return static_cast<int>(given_.cArgs - 1 - position);
  const DISPID name = given_.rgdispidNamedArgs[position];
  return name == DISPID_PROPERTYPUT ? parameterCount - 1 : static_cast<int>(name);
}

/// One argument. References that lead nowhere are refused here, both the variable itself and what it refers to, because
/// the system's conversions would follow them.
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
  // An object or a variant: what the operation takes is what the script has.
  arguments_[position] = value;
  return S_OK;
}

/// A converted copy, which lasts until the call is over.
HRESULT LateCall::FitValue(UINT position, const VARIANT& value, VARTYPE type) {
  VARIANT* converted = variables_[position].Address();
  const HRESULT result = ConvertVariant(converted, value, type);
  arguments_[position] = *converted;
  return result;
}

/// What stands for an argument that was left out. Without a default the operation gets the mark itself and knows what
/// it means by it.
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

/// A place for what is passed back. A variable of just the right type is passed as it is. One of another type is
/// refused before the call when the new value could not be put into it, because afterwards it would be too late to
/// refuse.
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
  // For simple types any member of the union will do: they all begin at the same place.
  argument.byref = type == VT_BSTR ? static_cast<void*>(&variable->bstrVal) : static_cast<void*>(&variable->llVal);
  return S_OK;
}

// All of them, even when one cannot be stored: the operation has been done, and the others are right.
HRESULT LateCall::PassBack() {
  HRESULT result = S_OK;
  for (UINT position = 0; position < given_.cArgs; ++position) {
    const VARIANT& given = given_.rgvarg[position];
    // Converted values have a variable as well but are no references; what the script passed by the right type has
    // none.
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
  // With the same lower bound, for callers tell "nobody" from it.
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
