// The rules that every object keeps: identity, counting, classes, error information, class objects, collections and
// their walks, and memory.
#include <ocidl.h>
#include <psapi.h>

#include <array>
#include <vector>

#include "support/Checks.h"

namespace tavi::automation_test {
namespace {

std::string NameOf(ITypeInfo& information) {
  AutomationText name;
  information.GetDocumentation(MEMBERID_NIL, name.Receive(), nullptr, nullptr, nullptr);
  return name.ToUtf8();
}

/// Every interface of an object leads to every other one and to one IUnknown.
void CheckInterfaces(const std::string& what, IUnknown& object, const IID& own) {
  const std::array<IID, 5> known = {IID_IUnknown, IID_IDispatch, own, IID_IProvideClassInfo, IID_ISupportErrorInfo};
  ComPointer<IUnknown> identity;
  CheckResult(what + ": IUnknown", object.QueryInterface(IID_IUnknown, identity.ReceiveUntyped()), S_OK);
  for (const IID& from : known) {
    ComPointer<IUnknown> start;
    CheckResult(what + ": an interface", object.QueryInterface(from, start.ReceiveUntyped()), S_OK);
    for (const IID& to : known) {
      ComPointer<IUnknown> end;
      CheckResult(what + ": another one from there", start->QueryInterface(to, end.ReceiveUntyped()), S_OK);
      ComPointer<IUnknown> again;
      CheckResult(what + ": IUnknown from there", end->QueryInterface(IID_IUnknown, again.ReceiveUntyped()), S_OK);
      Check(what + ": one identity", again.Get() == identity.Get());
    }
    void* none = &none;
    CheckResult(what + ": an unknown interface", start->QueryInterface(IID_IPersist, &none), E_NOINTERFACE);
    Check(what + ": an unknown interface is null", none == nullptr);
    CheckResult(what + ": no place", start->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  }
  const ULONG count = object.AddRef();
  Check(what + ": references are counted", object.Release() == count - 1);
}

void CheckClass(const std::string& name, REFCLSID identifier, const IID& own) {
  ComPointer<IUnknown> object;
  CheckResult(
      name, ::CoCreateInstance(identifier, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, object.ReceiveUntyped()), S_OK);
  if (!object) return;
  CheckInterfaces(name, *object.Get(), own);
  ComPointer<IProvideClassInfo> provider;
  object->QueryInterface(IID_IProvideClassInfo, provider.ReceiveUntyped());
  ComPointer<ITypeInfo> information;
  CheckResult(name + ": its class", provider->GetClassInfo(information.Receive()), S_OK);
  Check(name + ": its name", information && NameOf(*information.Get()) == name);
  CheckResult(name + ": no place for its class", provider->GetClassInfo(nullptr), E_POINTER);
  ComPointer<ISupportErrorInfo> support;
  object->QueryInterface(IID_ISupportErrorInfo, support.ReceiveUntyped());
  CheckResult(name + ": rich errors", support->InterfaceSupportsErrorInfo(own), S_OK);
  CheckResult(name + ": not of others", support->InterfaceSupportsErrorInfo(IID_IPersist), S_FALSE);
  ComPointer<IDispatch> dispatch;
  object->QueryInterface(IID_IDispatch, dispatch.ReceiveUntyped());
  UINT count = 0;
  CheckResult(name + ": one description", dispatch->GetTypeInfoCount(&count), S_OK);
  Check(name + ": exactly one", count == 1);
  CheckResult(name + ": no place for the count", dispatch->GetTypeInfoCount(nullptr), E_POINTER);
  CheckResult(name + ": no place for the description", dispatch->GetTypeInfo(0, 0, nullptr), E_POINTER);
  CheckResult(name + ": another description", dispatch->GetTypeInfo(1, 0, information.Receive()), DISP_E_BADINDEX);
  Check(name + ": is null", !information);
}

void CheckClassObject() {
  ComPointer<IClassFactory> factory;
  CheckResult("the class object",
              ::CoGetClassObject(__uuidof(HandiCalcSettings), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                                 factory.ReceiveUntyped()),
              S_OK);
  if (!factory) return;
  ComPointer<IUnknown> identity;
  ComPointer<IUnknown> again;
  CheckResult("its IUnknown", factory->QueryInterface(IID_IUnknown, identity.ReceiveUntyped()), S_OK);
  CheckResult("from there", identity->QueryInterface(IID_IClassFactory, again.ReceiveUntyped()), S_OK);
  void* none = &none;
  CheckResult("an interface that it has not", factory->QueryInterface(IID_IDispatch, &none), E_NOINTERFACE);
  Check("is null", none == nullptr);
  none = &none;
  CheckResult("an object inside another", factory->CreateInstance(identity.Get(), IID_IUnknown, &none),
              CLASS_E_NOAGGREGATION);
  Check("is refused", none == nullptr);
  none = &none;
  CheckResult("an object by another interface", factory->CreateInstance(nullptr, IID_IPersist, &none), E_NOINTERFACE);
  Check("is null too", none == nullptr);
  CheckResult("no place for an object", factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
  CheckResult("a lock", factory->LockServer(TRUE), S_OK);
  CheckResult("and its end", factory->LockServer(FALSE), S_OK);
}

ComPointer<IEnumVARIANT> WalkOf(_Collection& rows) {
  ComPointer<IUnknown> unknown;
  ComPointer<IEnumVARIANT> walk;
  CheckResult("_NewEnum", rows.get__NewEnum(unknown.Receive()), S_OK);
  CheckResult("IEnumVARIANT", unknown->QueryInterface(IID_IEnumVARIANT, walk.ReceiveUntyped()), S_OK);
  return walk;
}

std::string FirstNameOf(const VARIANT& item) {
  ComPointer<_EBUMembershipDetails> row;
  if (item.vt != VT_DISPATCH) return "";
  if (FAILED(item.pdispVal->QueryInterface(__uuidof(_EBUMembershipDetails), row.ReceiveUntyped()))) return "";
  AutomationText name;
  row->get_FirstName(name.Receive());
  return name.ToUtf8();
}

void CheckWalk(_Collection& rows) {
  const auto walk = WalkOf(rows);
  std::array<VARIANT, 3> items{};
  ULONG fetched = 9;
  CheckResult("none of them", walk->Next(0, items.data(), &fetched), S_OK);
  Check("is none", fetched == 0);
  CheckResult("no place for items", walk->Next(1, nullptr, &fetched), E_POINTER);
  CheckResult("no place for their number", walk->Next(2, items.data(), nullptr), E_POINTER);
  ComPointer<IEnumVARIANT> clone;
  CheckResult("no place for a second walk", walk->Clone(nullptr), E_POINTER);
  CheckResult("Next", walk->Next(1, items.data(), nullptr), S_OK);
  Check("the first item", FirstNameOf(items[0]) == "John");
  ::VariantClear(&items[0]);
  CheckResult("Clone", walk->Clone(clone.Receive()), S_OK);
  CheckResult("more than there are", walk->Next(3, items.data(), &fetched), S_FALSE);
  Check("gives the rest", fetched == 1 && FirstNameOf(items[0]) == "Jane" && items[1].vt == VT_EMPTY);
  ::VariantClear(&items[0]);
  CheckResult("behind the end", walk->Next(1, items.data(), &fetched), S_FALSE);
  Check("is none", fetched == 0);
  CheckResult("the second walk goes its own way", clone->Next(1, items.data(), &fetched), S_OK);
  Check("from where it was made", FirstNameOf(items[0]) == "Jane");
  ::VariantClear(&items[0]);
  CheckResult("Reset", walk->Reset(), S_OK);
  CheckResult("Skip", walk->Skip(2), S_OK);
  CheckResult("Skip behind the end", walk->Skip(1), S_FALSE);
  CheckResult("Skip very far", walk->Skip(0xFFFFFFFF), S_FALSE);
  ComPointer<IDispatch> other;
  CheckResult("an interface that it has not", walk->QueryInterface(IID_IDispatch, other.ReceiveUntyped()),
              E_NOINTERFACE);
  CheckResult("no place for one", walk->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

void CheckItems(_Collection& rows) {
  VARIANT item{};
  CheckResult("Item", rows.get_Item(Of(1L), &item), S_OK);
  Check("is an object", item.vt == VT_DISPATCH);
  ::VariantClear(&item);
  const AutomationText key("no key");
  VARIANT position = Of(2.0);
  VARIANT nowhere = ReferenceTo(VT_I4, nullptr);
  CheckResult("Item by a fractional number's variable", rows.get_Item(ReferenceTo(position), &item), S_OK);
  ::VariantClear(&item);
  CheckResult("Item 0", rows.get_Item(Of(0L), &item), static_cast<HRESULT>(0x800A0009));
  CheckResult("Item 3", rows.get_Item(Of(3L), &item), static_cast<HRESULT>(0x800A0009));
  CheckResult("Item of a key that is none", rows.get_Item(Of(key), &item), static_cast<HRESULT>(0x800A0005));
  for (const VARIANT& wrong : {OfType(VT_NULL), LeftOut(), Of(1e300), ReferenceTo(nowhere), nowhere,
                               ReferenceTo(VT_BSTR, nullptr), ReferenceTo(VT_VARIANT, nullptr)}) {
    CheckResult("Item of type " + std::to_string(wrong.vt), rows.get_Item(wrong, &item),
                static_cast<HRESULT>(0x800A000D));
    Check("gives nothing", item.vt == VT_EMPTY);
  }
}

/// Some languages know the members of a collection as methods, as statements in scripts do.
void CheckItemsByNumber(_Collection& rows) {
  VARIANT position = Of(1L);
  DISPPARAMS one{&position, nullptr, 1, 0};
  DISPPARAMS none{};
  constexpr std::array<WORD, 3> kKindsOfCall = {DISPATCH_METHOD, DISPATCH_PROPERTYGET,
                                                DISPATCH_METHOD | DISPATCH_PROPERTYGET};
  for (const WORD flags : kKindsOfCall) {
    const std::string kind = " called with " + std::to_string(flags);
    VARIANT item{};
    CheckResult("Item" + kind, rows.Invoke(DISPID_VALUE, IID_NULL, 0, flags, &one, &item, nullptr, nullptr), S_OK);
    Check("an item" + kind, FirstNameOf(item) == "John");
    ::VariantClear(&item);
    CheckResult("a walk" + kind, rows.Invoke(DISPID_NEWENUM, IID_NULL, 0, flags, &none, &item, nullptr, nullptr), S_OK);
    Check("is an object" + kind, item.vt == VT_UNKNOWN);
    ::VariantClear(&item);
  }
  DISPID value = DISPID_PROPERTYPUT;
  DISPPARAMS assigned{&position, &value, 1, 1};
  CheckResult("an item is not assigned",
              rows.Invoke(DISPID_VALUE, IID_NULL, 0, DISPATCH_PROPERTYPUT, &assigned, nullptr, nullptr, nullptr),
              DISP_E_MEMBERNOTFOUND);
}

SIZE_T UsedMemory() {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  counters.cb = sizeof(counters);
  ::GetProcessMemoryInfo(::GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                         sizeof(counters));
  return std::max(counters.PagefileUsage, counters.WorkingSetSize);
}

/// Passes long texts in and out in all ways, so that one that is not freed shows.
void PassTexts(_MembershipDatabase& database, _EBUMembershipDetails& details, const AutomationText& text) {
  details.put_Location(text.Get());
  AutomationText back;
  details.get_Location(back.Receive());
  database.GetMemberName(99, 0, text.Get(), back.Receive());
  BSTR first = ::SysAllocString(text.Get());
  BSTR initials = ::SysAllocString(text.Get());
  BSTR last = ::SysAllocString(text.Get());
  VARIANT number{};
  database.GetEBUNoAndNames(1, &first, &initials, &last, &number);
  ::VariantClear(&number);
  std::array<VARIANT, 3> variables = {OfType(VT_BSTR), OfType(VT_BSTR), OfType(VT_BSTR)};
  variables[0].bstrVal = first;
  variables[1].bstrVal = initials;
  variables[2].bstrVal = ::SysAllocString(text.Get());
  std::array<VARIANT, 4> arguments = {ReferenceTo(variables[0]), ReferenceTo(VT_BSTR, &last), ReferenceTo(variables[2]),
                                      Of(1L)};
  DISPPARAMS parameters{arguments.data(), nullptr, 4, 0};
  database.Invoke(10, IID_NULL, 0, DISPATCH_METHOD, &parameters, &number, nullptr, nullptr);
  ::VariantClear(&number);
  for (VARIANT& variable : variables) ::VariantClear(&variable);
  ::SysFreeString(last);
}

/// A database that is asked for by an interface that it has not leaves its thread's store alone.
void CheckStoreStays(_MembershipDatabase& database) {
  AutomationText before;
  AutomationText after;
  database.get_DatabaseFolder(before.Receive());
  void* none = &none;
  CheckResult("a database by another interface",
              ::CoCreateInstance(__uuidof(MembershipDatabase), nullptr, CLSCTX_INPROC_SERVER, IID_IPersist, &none),
              E_NOINTERFACE);
  Check("is null", none == nullptr);
  database.get_DatabaseFolder(after.Receive());
  Check("and leaves the folder", !before.ToUtf8().empty() && before.ToUtf8() == after.ToUtf8());
}

}  // namespace

void CheckObjectRules(_MembershipDatabase& database) {
  CheckStoreStays(database);
  CheckClass("HandiCalcSettings", __uuidof(HandiCalcSettings), __uuidof(_HandiCalcSettings));
  CheckClass("Handicaps", __uuidof(Handicaps), __uuidof(_Handicaps));
  CheckClass("EBUMembershipDetails", __uuidof(EBUMembershipDetails), __uuidof(_EBUMembershipDetails));
  CheckClassObject();
}

void CheckCollections(_MembershipDatabase& database) {
  ComPointer<_Collection> rows;
  CheckResult("SearchEBUList", database.SearchEBUList(nullptr, AutomationText("Smith").Get(), rows.Receive()), S_OK);
  if (!rows) return;
  CheckInterfaces("Collection", *rows.Get(), __uuidof(_Collection));
  CheckWalk(*rows.Get());
  CheckItems(*rows.Get());
  CheckItemsByNumber(*rows.Get());
}

void CheckMemory(_MembershipDatabase& database) {
  const auto details = Create<_EBUMembershipDetails>(__uuidof(EBUMembershipDetails));
  if (!details) return;
  constexpr std::size_t kLength = 50'000;
  constexpr int kCalls = 400;
  const AutomationText text(std::string(kLength, 'x'));
  for (int call = 0; call < kCalls; ++call) PassTexts(database, *details.Get(), text);
  const SIZE_T before = UsedMemory();
  for (int call = 0; call < kCalls; ++call) PassTexts(database, *details.Get(), text);
  const SIZE_T after = UsedMemory();
  // One text that is lost in each round would be kCalls * kLength * 2 bytes.
  Check("texts are freed, " + std::to_string(after) + " bytes after " + std::to_string(before),
        after < before + kCalls * kLength);
}

}  // namespace tavi::automation_test
