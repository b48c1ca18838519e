// An early-bound program: "early_client FOLDER" drives the registered server through its interfaces, as compiled
// callers do. Prints each failed check and a last line with the counts; the exit code is 1 when one failed.
#include <TaviMembership.h>

#include <string>

#include "support/Checks.h"

namespace {

using tavi::automation_test::AddMember;
using tavi::automation_test::AutomationText;
using tavi::automation_test::Check;
using tavi::automation_test::ComPointer;
using tavi::automation_test::Create;

void CheckIdentity(_MembershipDatabase& database) {
  ComPointer<IUnknown> unknown;
  ComPointer<IDispatch> dispatch;
  ComPointer<IUnknown> again;
  ComPointer<IPersist> other;
  Check("IUnknown", database.QueryInterface(IID_IUnknown, unknown.ReceiveUntyped()) == S_OK);
  Check("IDispatch", database.QueryInterface(IID_IDispatch, dispatch.ReceiveUntyped()) == S_OK);
  Check("IUnknown of IDispatch", dispatch->QueryInterface(IID_IUnknown, again.ReceiveUntyped()) == S_OK);
  Check("one identity", unknown.Get() == again.Get());
  Check("an interface that it has not", database.QueryInterface(IID_IPersist, other.ReceiveUntyped()) == E_NOINTERFACE);
  Check("no place for the interface", database.QueryInterface(IID_IUnknown, nullptr) == E_POINTER);
  ComPointer<ITypeInfo> information;
  Check("type information", dispatch->GetTypeInfo(0, 0, information.Receive()) == S_OK);
  Check("type information behind the end", dispatch->GetTypeInfo(1, 0, information.Receive()) == DISP_E_BADINDEX);
}

void CheckPassedBackTexts(_MembershipDatabase& database, long member) {
  AutomationText first("old");
  BSTR firstName = first.Detach();
  BSTR initials = nullptr;
  BSTR lastName = nullptr;
  VARIANT number{};
  Check("GetEBUNoAndNames", database.GetEBUNoAndNames(member, &firstName, &initials, &lastName, &number) == S_OK);
  Check("the number is a text", number.vt == VT_BSTR && ::SysStringLen(number.bstrVal) == 0);
  ::VariantClear(&number);
  Check("texts with accents come back", AutomationText::ToUtf8(firstName) == "Łukasz");
  Check("the surname", AutomationText::ToUtf8(lastName) == "Müller-Lüdenscheidt");
  ::SysFreeString(firstName);
  ::SysFreeString(initials);
  ::SysFreeString(lastName);
  Check("a null variable", database.GetEBUNoAndNames(member, nullptr, nullptr, nullptr, &number) == E_POINTER);
  Check("a null result", database.get_DatabaseFolder(nullptr) == E_POINTER);
}

void CheckErrors(_MembershipDatabase& database, long member) {
  ComPointer<ISupportErrorInfo> support;
  Check("ISupportErrorInfo", database.QueryInterface(IID_ISupportErrorInfo, support.ReceiveUntyped()) == S_OK);
  Check("rich errors", support->InterfaceSupportsErrorInfo(__uuidof(_MembershipDatabase)) == S_OK);
  Check("not of others", support->InterfaceSupportsErrorInfo(IID_IPersist) == S_FALSE);
  VARIANT_BOOL result = VARIANT_TRUE;
  Check("the error's number", database.AddRegularPair(member, member, &result) == static_cast<HRESULT>(0x80040000));
  Check("the result is cleared", result == VARIANT_FALSE);
  ComPointer<IErrorInfo> information;
  Check("error information", ::GetErrorInfo(0, information.Receive()) == S_OK);
  if (!information) return;
  AutomationText source;
  AutomationText description;
  information->GetSource(source.Receive());
  information->GetDescription(description.Receive());
  Check("its source", source.ToUtf8() == "cDatabase");
  Check("its description", description.ToUtf8() == "You cannot partner a player with themself.");
  Check("no settings", database.putref_HandicalcOptions(nullptr) == static_cast<HRESULT>(0x800A005B));
}

void CheckMatches(_MembershipDatabase& database, long member) {
  SAFEARRAY* numbers = nullptr;
  Check("FindNearestMatches",
        database.FindNearestMatches(AutomationText("Łukasz Müller-Lüdenscheidt").Get(), &numbers) == S_OK);
  if (numbers == nullptr) return;
  VARTYPE type = VT_EMPTY;
  LONG first = -1;
  LONG last = -1;
  long found = 0;
  ::SafeArrayGetVartype(numbers, &type);
  ::SafeArrayGetLBound(numbers, 1, &first);
  ::SafeArrayGetUBound(numbers, 1, &last);
  ::SafeArrayGetElement(numbers, &first, &found);
  Check("an array of 32-bit numbers", type == VT_I4);
  Check("its bounds", first == 1 && last == 1);
  Check("its number", found == member);
  ::SafeArrayDestroy(numbers);
}

void CheckEnumeration(_MembershipDatabase& database) {
  ComPointer<_Collection> rows;
  Check("SearchEBUList",
        database.SearchEBUList(AutomationText("").Get(), AutomationText("Smith").Get(), rows.Receive()) == S_OK);
  ComPointer<IUnknown> unknown;
  Check("_NewEnum", rows->get__NewEnum(unknown.Receive()) == S_OK);
  ComPointer<IEnumVARIANT> walk;
  Check("IEnumVARIANT", unknown->QueryInterface(IID_IEnumVARIANT, walk.ReceiveUntyped()) == S_OK);
  Check("Skip", walk->Skip(1) == S_OK);
  VARIANT items[2]{};
  ULONG fetched = 9;
  Check("Next at the last item", walk->Next(2, items, &fetched) == S_FALSE && fetched == 1);
  ComPointer<_EBUMembershipDetails> row;
  Check("an item's interface",
        items[0].vt == VT_DISPATCH &&
            items[0].pdispVal->QueryInterface(__uuidof(_EBUMembershipDetails), row.ReceiveUntyped()) == S_OK);
  AutomationText name;
  Check("its name", row && row->get_FirstName(name.Receive()) == S_OK && name.ToUtf8() == "Jane");
  ::VariantClear(&items[0]);
  Check("Skip behind the end", walk->Skip(1) == S_FALSE);
  Check("Reset", walk->Reset() == S_OK && walk->Next(1, items, nullptr) == S_OK);
  ::VariantClear(&items[0]);
}

void Drive(const std::string& folder) {
  const auto database = Create<_MembershipDatabase>(__uuidof(MembershipDatabase));
  if (!database) return;
  CheckIdentity(*database.Get());
  Check("DatabaseFolder", database->put_DatabaseFolder(AutomationText(folder).Get()) == S_OK);
  const long lukasz = AddMember(*database.Get(), "Łukasz", "Müller-Lüdenscheidt");
  CheckPassedBackTexts(*database.Get(), lukasz);
  CheckErrors(*database.Get(), lukasz);
  CheckMatches(*database.Get(), lukasz);
  CheckEnumeration(*database.Get());
  tavi::automation_test::CheckNullPointers(*database.Get());
  tavi::automation_test::CheckNullTexts(*database.Get());
  tavi::automation_test::CheckCallsByNumber(*database.Get());
  tavi::automation_test::CheckPassedBackByNumber(*database.Get());
  tavi::automation_test::CheckEveryArgument(*database.Get());
  tavi::automation_test::CheckObjectRules(*database.Get());
  tavi::automation_test::CheckCollections(*database.Get());
  tavi::automation_test::CheckLeftOutHandicaps(*database.Get());
  tavi::automation_test::CheckMemory(*database.Get());
  const auto settings = Create<_HandiCalcSettings>(__uuidof(HandiCalcSettings));
  short weighting = 0;
  Check("SamePartnerWeighting", settings && settings->put_SamePartnerWeighting(10) == S_OK &&
                                    settings->get_SamePartnerWeighting(&weighting) == S_OK && weighting == 50);
  Check("HandicalcOptions", database->putref_HandicalcOptions(settings.Get()) == S_OK);
  ::CoFreeUnusedLibraries();
  Check("still loaded", database->CloseDatabase() == S_OK);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  const tavi::windows::ComApartment apartment;
  Drive(arguments[1]);
  return tavi::automation_test::Summary();
}
