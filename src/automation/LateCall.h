#pragma once

#include <vector>

#include "automation/Variant.h"

namespace tavi::automation {

/// The arguments of a call by name or number, as scripts make it, fitted to the operation that is called. Scripts pass
/// variables that hold anything: for an argument that is passed back the operation gets a variable of its own type, and
/// the script's one gets the new value afterwards. Where an argument is left out, its default stands in.
class LateCall {
 public:
  /// `parameters` outlives this object.
  LateCall(ITypeInfo& information, DISPID member, WORD flags, DISPPARAMS& parameters);
  LateCall(const LateCall&) = delete;
  LateCall& operator=(const LateCall&) = delete;

  /// Fits the arguments. On failure `badArgument`, when wanted, says which one it was.
  HRESULT Prepare(UINT* badArgument);
  /// What the operation is called with.
  [[nodiscard]] DISPPARAMS* Parameters() { return &fitted_; }
  /// The one kind of call that it is.
  [[nodiscard]] WORD Flags() const { return flags_; }
  /// Gives the script's variables their new values, after success.
  HRESULT PassBack();

 private:
  [[nodiscard]] bool IsWellFormed() const;
  [[nodiscard]] bool GivesObject() const;
  HRESULT FitAll(const FUNCDESC& operation, UINT* badArgument);
  HRESULT Fit(UINT position, const ELEMDESC& parameter);
  HRESULT FitDefault(UINT position, const ELEMDESC& parameter);
  HRESULT FitValue(UINT position, const VARIANT& value, VARTYPE type);
  HRESULT FitReference(UINT position, VARTYPE type);
  [[nodiscard]] int ParameterOf(UINT position, int parameterCount) const;

  ITypeInfo& information_;
  DISPID member_;
  WORD flags_;
  DISPPARAMS& given_;
  DISPPARAMS fitted_;
  std::vector<VARIANT> arguments_;
  std::vector<Variant> variables_;
};

/// Scripts read arrays of any values only: makes one of an array of numbers. Other results stay as they are.
HRESULT MakeReadableForScripts(VARIANT* result);

}  // namespace tavi::automation
