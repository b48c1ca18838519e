// Calls through IDispatch as programs without our headers make them: names, numbers, kinds of call, argument lists that
// are wrong, and variables that get something passed back.
#include <array>
#include <vector>

#include "automation/Variant.h"
#include "support/Checks.h"

namespace tavi::automation_test {
namespace {

using automation::Variant;

DISPID NumberOf(IDispatch& object, const wchar_t* name) {
  std::wstring copy = name;
  LPOLESTR text = copy.data();
  DISPID number = DISPID_UNKNOWN;
  CheckResult("GetIDsOfNames", object.GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &number), S_OK);
  return number;
}

/// A call, with its arguments in the order of the operation's. The first names belong to the last arguments.
struct Call {
  explicit Call(std::vector<VARIANT> givenArguments, int kindsOfCall = DISPATCH_METHOD,
                std::vector<DISPID> givenNames = {})
      : arguments(std::move(givenArguments)), flags(static_cast<WORD>(kindsOfCall)), names(std::move(givenNames)) {}

  HRESULT Make(IDispatch& object, DISPID member) {
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    DISPPARAMS parameters{reversed.data(), names.data(), static_cast<UINT>(reversed.size()),
                          static_cast<UINT>(names.size())};
    ::VariantClear(result.Address());
    exception = EXCEPINFO{};
    badArgument = 99;
    return object.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result.Address(), &exception,
                         &badArgument);
  }
  HRESULT Make(IDispatch& object, const wchar_t* name) { return Make(object, NumberOf(object, name)); }

  std::vector<VARIANT> arguments;
  WORD flags;
  std::vector<DISPID> names;
  Variant result;
  EXCEPINFO exception{};
  UINT badArgument = 99;
};

void CheckNames(IDispatch& object) {
  std::array<std::wstring, 3> texts = {L"getmembername", L"DEFAULTNAME", L"nameformat"};
  std::array<LPOLESTR, 3> names = {texts[0].data(), texts[1].data(), texts[2].data()};
  std::array<DISPID, 3> numbers{};
  CheckResult("names in any case of letters", object.GetIDsOfNames(IID_NULL, names.data(), 3, 0, numbers.data()), S_OK);
  Check("the numbers of the arguments", numbers[0] == 8 && numbers[1] == 2 && numbers[2] == 1);
  texts[1] = L"NoSuchArgument";
  names[1] = texts[1].data();
  CheckResult("an unknown argument", object.GetIDsOfNames(IID_NULL, names.data(), 3, 0, numbers.data()),
              DISP_E_UNKNOWNNAME);
  Check("has no number", numbers[1] == DISPID_UNKNOWN);
  texts[0] = L"NoSuchOperation";
  names[0] = texts[0].data();
  CheckResult("an unknown name", object.GetIDsOfNames(IID_NULL, names.data(), 1, 0, numbers.data()),
              DISP_E_UNKNOWNNAME);
  Check("has no number either", numbers[0] == DISPID_UNKNOWN);
  CheckResult("names for another interface", object.GetIDsOfNames(IID_IUnknown, names.data(), 1, 0, numbers.data()),
              DISP_E_UNKNOWNINTERFACE);
  CheckResult("no names", object.GetIDsOfNames(IID_NULL, nullptr, 1, 0, numbers.data()), E_POINTER);
  names[0] = nullptr;
  CheckResult("a null name", object.GetIDsOfNames(IID_NULL, names.data(), 1, 0, numbers.data()), E_POINTER);
  names[0] = texts[0].data();
  CheckResult("no numbers", object.GetIDsOfNames(IID_NULL, names.data(), 1, 0, nullptr), E_POINTER);
}

void CheckMalformed(IDispatch& object) {
  DISPPARAMS none{};
  CheckResult("no arguments at all", object.Invoke(6, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr),
              E_POINTER);
  CheckResult("another interface's call",
              object.Invoke(6, IID_IUnknown, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              DISP_E_UNKNOWNINTERFACE);
  CheckResult("an unknown number", object.Invoke(4711, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              DISP_E_MEMBERNOTFOUND);
  CheckResult("no kind of call", object.Invoke(6, IID_NULL, 0, 0, &none, nullptr, nullptr, nullptr),
              DISP_E_MEMBERNOTFOUND);
  CheckResult("nowhere to put result and error",
              object.Invoke(6, IID_NULL, 12345, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), S_OK);
  DISPPARAMS withoutValues{nullptr, nullptr, 1, 0};
  CheckResult("arguments without a place",
              object.Invoke(14, IID_NULL, 0, DISPATCH_METHOD, &withoutValues, nullptr, nullptr, nullptr), E_INVALIDARG);
  VARIANT value = Of(1L);
  DISPPARAMS withoutNames{&value, nullptr, 1, 1};
  CheckResult("names without a place",
              object.Invoke(14, IID_NULL, 0, DISPATCH_METHOD, &withoutNames, nullptr, nullptr, nullptr), E_INVALIDARG);
  std::array<DISPID, 2> names{};
  DISPPARAMS moreNames{&value, names.data(), 1, 2};
  CheckResult("more names than arguments",
              object.Invoke(14, IID_NULL, 0, DISPATCH_METHOD, &moreNames, nullptr, nullptr, nullptr), E_INVALIDARG);
}

void CheckKinds(IDispatch& object) {
  CheckResult("a method as a property", Call{{}, DISPATCH_PROPERTYGET}.Make(object, L"OpenDatabase"),
              DISP_E_MEMBERNOTFOUND);
  CheckResult("a property as a method", Call{{}, DISPATCH_METHOD}.Make(object, L"DatabaseFolder"),
              DISP_E_MEMBERNOTFOUND);
  CheckResult("either of them", Call{{}, DISPATCH_METHOD | DISPATCH_PROPERTYGET}.Make(object, L"DatabaseFolder"), S_OK);
  Call put{{Of(1L)}, DISPATCH_PROPERTYPUT, {DISPID_PROPERTYPUT}};
  CheckResult("a value for a property that is only read", put.Make(object, L"DatabaseExists"), DISP_E_MEMBERNOTFOUND);
  CheckResult("a number for a truth", put.Make(object, L"IncludeInactiveMembers"), S_OK);
  put.flags = DISPATCH_PROPERTYPUTREF;
  CheckResult("an object for a truth", put.Make(object, L"IncludeInactiveMembers"), DISP_E_MEMBERNOTFOUND);
  put = Call{{Of(0L)}, DISPATCH_PROPERTYPUT, {DISPID_PROPERTYPUT}};
  CheckResult("and back", put.Make(object, L"IncludeInactiveMembers"), S_OK);
}

void CheckLists(IDispatch& object) {
  const AutomationText nobody("nobody");
  const AutomationText word("word");
  Call tooMany{{Of(99L), Of(0L), Of(nobody), Of(1L)}};
  CheckResult("too many arguments", tooMany.Make(object, L"GetMemberName"), DISP_E_BADPARAMCOUNT);
  CheckResult("too few", Call{{Of(99L)}}.Make(object, L"GetMemberName"), DISP_E_BADPARAMCOUNT);
  CheckResult("arguments for what has none", Call{{Of(1L)}}.Make(object, L"EndGet"), DISP_E_BADPARAMCOUNT);
  Call missing{{LeftOut(), Of(0L)}};
  CheckResult("an argument that must be there", missing.Make(object, L"GetMemberName"), DISP_E_PARAMNOTOPTIONAL);
  Check("says which one", missing.badArgument == 1);
  Call optional{{Of(99L), Of(0L), LeftOut()}};
  CheckResult("one that may be left out", optional.Make(object, L"GetMemberName"), S_OK);
  Call wrong{{Of(99L), Of(word)}};
  CheckResult("a word for a number", wrong.Make(object, L"GetMemberName"), DISP_E_TYPEMISMATCH);
  Check("says which one too", wrong.badArgument == 0);
  CheckResult("a number of too many bits", Call{{Of(1L), Of(40000L)}}.Make(object, L"GetMemberName"), DISP_E_OVERFLOW);
  Call named{{Of(99L), Of(0L), Of(nobody)}, DISPATCH_METHOD, {2}};
  CheckResult("an argument by name", named.Make(object, L"GetMemberName"), S_OK);
  Check("arrives", named.result.Get().vt == VT_BSTR && AutomationText::ToUtf8(named.result.Get().bstrVal) == "nobody");
  Call allNamed{{Of(nobody), Of(99L), Of(0L)}, DISPATCH_METHOD, {1, 0, 2}};
  CheckResult("all of them by name", allNamed.Make(object, L"GetMemberName"), S_OK);
  Check("arrive", AutomationText::ToUtf8(allNamed.result.Get().bstrVal) == "nobody");
  Call unknown{{Of(99L), Of(0L), Of(nobody)}, DISPATCH_METHOD, {7}};
  CheckResult("a name that is none", unknown.Make(object, L"GetMemberName"), DISP_E_PARAMNOTFOUND);
  Check("is the one that is wrong", unknown.badArgument == 0);
  Call twice{{Of(99L), Of(0L), Of(98L)}, DISPATCH_METHOD, {0}};
  CheckResult("an argument by name and by position", twice.Make(object, L"GetMemberName"), DISP_E_PARAMNOTFOUND);
  Call onlyNamed{{Of(99L)}, DISPATCH_METHOD, {0}};
  CheckResult("the others missing", onlyNamed.Make(object, L"GetMemberName"), DISP_E_BADPARAMCOUNT);
}

void CheckFailures(IDispatch& object) {
  Call pair{{Of(1L), Of(1L)}};
  CheckResult("a failed operation", pair.Make(object, L"AddRegularPair"), DISP_E_EXCEPTION);
  Check("its number", pair.exception.scode == static_cast<HRESULT>(0x80040000) && pair.exception.wCode == 0);
  Check("its source", AutomationText::ToUtf8(pair.exception.bstrSource) == "cDatabase");
  Check("its description",
        AutomationText::ToUtf8(pair.exception.bstrDescription) == "You cannot partner a player with themself.");
  ::SysFreeString(pair.exception.bstrSource);
  ::SysFreeString(pair.exception.bstrDescription);
  ::SysFreeString(pair.exception.bstrHelpFile);
  ComPointer<IErrorInfo> left;
  CheckResult("its information is not left for the next call", ::GetErrorInfo(0, left.Receive()), S_FALSE);
}

void CheckSettingsByNumber(IDispatch& object) {
  const auto settings = Create<_HandiCalcSettings>(__uuidof(HandiCalcSettings));
  const auto other = Create<_Handicaps>(__uuidof(Handicaps));
  const AutomationText word("word");
  for (int kind : {DISPATCH_PROPERTYPUT, DISPATCH_PROPERTYPUTREF, DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF}) {
    settings->put_Disabled(VARIANT_TRUE);
    Call put{{Of(settings.Get())}, kind, {DISPID_PROPERTYPUT}};
    CheckResult("settings, kind of call " + std::to_string(kind), put.Make(object, L"HandicalcOptions"), S_OK);
    VARIANT_BOOL disabled = VARIANT_TRUE;
    settings->get_Disabled(&disabled);
    Check("are stored as the object itself", disabled == VARIANT_FALSE);
  }
  Call value{{Of(1L)}, DISPATCH_PROPERTYPUT, {DISPID_PROPERTYPUT}};
  CheckResult("a number as settings", value.Make(object, L"HandicalcOptions"), DISP_E_MEMBERNOTFOUND);
  Call text{{Of(word)}, DISPATCH_PROPERTYPUTREF, {DISPID_PROPERTYPUT}};
  CheckResult("a text set as settings", text.Make(object, L"HandicalcOptions"), DISP_E_TYPEMISMATCH);
  Call wrong{{Of(other.Get())}, DISPATCH_PROPERTYPUTREF, {DISPID_PROPERTYPUT}};
  Check("an object of another class", FAILED(wrong.Make(object, L"HandicalcOptions")));
  Call nothing{{Of(static_cast<IDispatch*>(nullptr))}, DISPATCH_PROPERTYPUTREF, {DISPID_PROPERTYPUT}};
  CheckResult("no object", nothing.Make(object, L"HandicalcOptions"), DISP_E_EXCEPTION);
  Check("is the usual error", nothing.exception.scode == static_cast<HRESULT>(0x800A005B));
}

void CheckVariables(_MembershipDatabase& database) {
  long number = 0;
  AutomationText oldName("an old name");
  BSTR name = oldName.Detach();
  double handicap = 0;
  Call exact{{ReferenceTo(VT_I4, &number), ReferenceTo(VT_BSTR, &name), ReferenceTo(VT_R8, &handicap), Of(0L)}};
  CheckResult("variables of the operation's types", exact.Make(database, L"GetFirstMember"), S_OK);
  Check("get the values", number == 1 && handicap == 50.0);
  Check("a text too", AutomationText::ToUtf8(name) == "Łukasz Müller-Lüdenscheidt");

  short small = 0;
  VARIANT any{};
  Call other{{ReferenceTo(VT_I2, &small), ReferenceTo(any), ReferenceTo(VT_BSTR, &name), Of(0L)}};
  ::SysFreeString(name);
  name = AutomationText("7").Detach();
  CheckResult("variables of other types", other.Make(database, L"GetFirstMember"), S_OK);
  Check("get converted values", small == 1 && any.vt == VT_BSTR && AutomationText::ToUtf8(name) == "50");

  ::SysFreeString(name);
  name = AutomationText("word").Detach();
  Call word{{Of(1L), Of(1L), ReferenceTo(VT_BSTR, &name), Of(0L)}};
  CheckResult("a text variable that holds no number", word.Make(database, L"GetFirstMember"), DISP_E_TYPEMISMATCH);
  Check("is the one that is wrong", word.badArgument == 1);
  ::SysFreeString(name);

  IDispatch* object = nullptr;
  Call objects{{ReferenceTo(VT_DISPATCH, &object), Of(0L), Of(0L), Of(0L)}};
  CheckResult("a variable for objects", objects.Make(database, L"GetFirstMember"), DISP_E_TYPEMISMATCH);
  VARIANT nowhere = ReferenceTo(VT_I4, nullptr);
  for (const VARIANT& null : {ReferenceTo(VT_I4, nullptr), ReferenceTo(VT_VARIANT, nullptr), ReferenceTo(nowhere)}) {
    Call reference{{null, ReferenceTo(any), ReferenceTo(any), null}};
    CheckResult("a reference to nothing", reference.Make(database, L"GetFirstMember"), DISP_E_TYPEMISMATCH);
    CheckResult("the same for a plain argument", Call{{null}}.Make(database, L"GetHandicap"), DISP_E_TYPEMISMATCH);
  }
  CheckResult("values instead of variables", Call{{Of(0L), Of(0L), Of(0L), Of(0L)}}.Make(database, L"GetFirstMember"),
              S_OK);
  ::VariantClear(&any);
}

void CheckLastReference(_MembershipDatabase& database) {
  AutomationText folder;
  database.get_DatabaseFolder(folder.Receive());
  ComPointer<_MembershipDatabase> single = Create<_MembershipDatabase>(__uuidof(MembershipDatabase));
  single->put_DatabaseFolder(folder.Get());
  IDispatch& called = *single.Get();
  // A script's variable that holds the only reference to the object that is called, and gets another value.
  VARIANT holder = Of(single.Detach());
  VARIANT rest{};
  Call settled{{Of(99L), ReferenceTo(holder), ReferenceTo(rest), ReferenceTo(rest)}};
  CheckResult("a call that lets go of its object", settled.Make(called, L"GetEBUNoAndNames"), S_OK);
  Check("passes its values back", holder.vt == VT_BSTR && rest.vt == VT_BSTR);
  ::VariantClear(&holder);
  ::VariantClear(&rest);
}

}  // namespace

void CheckCallsByNumber(_MembershipDatabase& database) {
  CheckNames(database);
  CheckMalformed(database);
  CheckKinds(database);
  CheckLists(database);
  CheckFailures(database);
  CheckSettingsByNumber(database);
}

void CheckPassedBackByNumber(_MembershipDatabase& database) {
  CheckVariables(database);
  CheckLastReference(database);
}

}  // namespace tavi::automation_test
