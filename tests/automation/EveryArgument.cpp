// Each argument of each member of each interface, found through the type library and called by number with values of
// every kind: those that cannot be converted are refused before anything is done, and the answer says which one it was.
#include <vector>

#include "support/Checks.h"

namespace tavi::automation_test {
namespace {

/// Values that a program may pass for one argument, and what has to come of them.
struct Trial {
  const char* name;
  VARIANT value;
};

std::vector<Trial> Unconvertible(SAFEARRAY* array) {
  VARIANT list = OfType(VT_ARRAY | VT_VARIANT);
  list.parray = array;
  VARIANT error = OfType(VT_ERROR);
  error.scode = E_FAIL;
  return {{"null", OfType(VT_NULL)},
          {"an array", list},
          {"an error", error},
          {"nothing", Of(static_cast<IDispatch*>(nullptr))}};
}

class Members {
 public:
  explicit Members(IDispatch& object) {
    object.GetTypeInfo(0, 0, information_.Receive());
    TYPEATTR* attributes = nullptr;
    if (!information_ || FAILED(information_->GetTypeAttr(&attributes))) return;
    const UINT count = attributes->cFuncs;
    information_->ReleaseTypeAttr(attributes);
    for (UINT index = 0; index < count; ++index) {
      FUNCDESC* description = nullptr;
      if (FAILED(information_->GetFuncDesc(index, &description))) continue;
      // Those of IUnknown and IDispatch, which some systems list too.
      const bool isInherited = (static_cast<DWORD>(description->memid) & 0xFF000000U) == 0x60000000U;
      if (isInherited) {
        information_->ReleaseFuncDesc(description);
      } else {
        descriptions_.push_back(description);
      }
    }
  }
  ~Members() {
    for (FUNCDESC* description : descriptions_) information_->ReleaseFuncDesc(description);
  }
  Members(const Members&) = delete;
  Members& operator=(const Members&) = delete;

  [[nodiscard]] const std::vector<FUNCDESC*>& All() const { return descriptions_; }
  [[nodiscard]] std::string NameOf(const FUNCDESC& description) const {
    AutomationText name;
    information_->GetDocumentation(description.memid, name.Receive(), nullptr, nullptr, nullptr);
    return name.ToUtf8();
  }

 private:
  ComPointer<ITypeInfo> information_;
  std::vector<FUNCDESC*> descriptions_;
};

VARTYPE TypeOf(const ELEMDESC& parameter) {
  return parameter.tdesc.vt == VT_PTR ? parameter.tdesc.lptdesc->vt : parameter.tdesc.vt;
}

bool IsPassedBack(const ELEMDESC& parameter) {
  return (parameter.paramdesc.wParamFlags & PARAMFLAG_FOUT) != 0;
}

bool IsOptional(const ELEMDESC& parameter) {
  return (parameter.paramdesc.wParamFlags & PARAMFLAG_FOPT) != 0;
}

HRESULT Invoke(IDispatch& object, const FUNCDESC& member, std::vector<VARIANT> arguments, UINT* badArgument) {
  DISPID valueOfProperty = DISPID_PROPERTYPUT;
  const bool isPut = member.invkind == INVOKE_PROPERTYPUT || member.invkind == INVOKE_PROPERTYPUTREF;
  DISPPARAMS parameters{arguments.data(), isPut ? &valueOfProperty : nullptr, static_cast<UINT>(arguments.size()),
                        isPut ? 1U : 0U};
  return object.Invoke(member.memid, IID_NULL, LOCALE_USER_DEFAULT, static_cast<WORD>(member.invkind), &parameters,
                       nullptr, nullptr, badArgument);
}

/// Calls with `value` in the place of one argument and ones in the others'.
HRESULT CallWith(IDispatch& object, const FUNCDESC& member, int place, VARIANT value, UINT& badArgument) {
  std::vector<VARIANT> arguments(static_cast<std::size_t>(member.cParams), Of(1L));
  arguments[static_cast<std::size_t>(member.cParams - 1 - place)] = value;
  return Invoke(object, member, std::move(arguments), &badArgument);
}

HRESULT CallWithOneMore(IDispatch& object, const FUNCDESC& member) {
  std::vector<VARIANT> arguments(static_cast<std::size_t>(member.cParams) + 1, Of(1L));
  if (member.invkind == INVOKE_PROPERTYPUTREF) arguments[0] = Of(&object);
  return Invoke(object, member, std::move(arguments), nullptr);
}

void CheckParameter(IDispatch& object, const FUNCDESC& member, const std::string& name, int place, SAFEARRAY* array) {
  const ELEMDESC& parameter = member.lprgelemdescParam[place];
  const std::string what = name + ", argument " + std::to_string(place) + ", ";
  const auto position = static_cast<UINT>(member.cParams - 1 - place);
  UINT badArgument = 99;
  // Variants take everything and decide themselves; settings objects have checks of their own.
  if (TypeOf(parameter) == VT_VARIANT || TypeOf(parameter) == VT_USERDEFINED) return;
  for (const Trial& trial : Unconvertible(array)) {
    badArgument = 99;
    CheckResult(what + trial.name, CallWith(object, member, place, trial.value, badArgument), DISP_E_TYPEMISMATCH);
    Check(what + trial.name + " is said to be the wrong one", badArgument == position);
  }
  if (!IsOptional(parameter)) {
    badArgument = 99;
    CheckResult(what + "left out", CallWith(object, member, place, LeftOut(), badArgument), DISP_E_PARAMNOTOPTIONAL);
    Check(what + "left out is said to be the wrong one", badArgument == position);
  }
  const bool isNumber = TypeOf(parameter) != VT_BSTR && TypeOf(parameter) != VT_PTR;
  const AutomationText word("word");
  if (isNumber) {
    CheckResult(what + "a word", CallWith(object, member, place, Of(word), badArgument), DISP_E_TYPEMISMATCH);
  }
  const bool isWhole = TypeOf(parameter) == VT_I2 || TypeOf(parameter) == VT_I4;
  if (isWhole) {
    CheckResult(what + "too great a number", CallWith(object, member, place, Of(1e300), badArgument), DISP_E_OVERFLOW);
  }
  if (IsPassedBack(parameter)) {
    VARIANT nothing = ReferenceTo(VT_I4, nullptr);
    CheckResult(what + "a null variable", CallWith(object, member, place, nothing, badArgument), DISP_E_TYPEMISMATCH);
  }
}

void CheckMembers(const std::string& interfaceName, IDispatch& object) {
  SAFEARRAY* array = ::SafeArrayCreateVector(VT_VARIANT, 0, 3);
  const Members members(object);
  Check(interfaceName + " has members", !members.All().empty());
  for (const FUNCDESC* member : members.All()) {
    const std::string name = interfaceName + "." + members.NameOf(*member);
    for (int place = 0; place < member->cParams; ++place) CheckParameter(object, *member, name, place, array);
    CheckResult(name + " with too many arguments", CallWithOneMore(object, *member), DISP_E_BADPARAMCOUNT);
  }
  ::SafeArrayDestroy(array);
}

}  // namespace

void CheckEveryArgument(_MembershipDatabase& database) {
  CheckMembers("MembershipDatabase", database);
  const auto settings = Create<_HandiCalcSettings>(__uuidof(HandiCalcSettings));
  const auto handicaps = Create<_Handicaps>(__uuidof(Handicaps));
  const auto details = Create<_EBUMembershipDetails>(__uuidof(EBUMembershipDetails));
  if (settings) CheckMembers("HandiCalcSettings", *settings.Get());
  if (handicaps) CheckMembers("Handicaps", *handicaps.Get());
  if (details) CheckMembers("EBUMembershipDetails", *details.Get());
}

}  // namespace tavi::automation_test
