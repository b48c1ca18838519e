// "type_library LIBRARY" prints what the type library in a file says, one line for each library, class, interface and
// member, with tabs between the parts, which under_wine.py compares with type-library.txt.
#include <iostream>
#include <vector>

#include "support/Checks.h"

namespace {

using tavi::automation_test::AutomationText;
using tavi::automation_test::ComPointer;

struct Documentation {
  std::string name;
  std::string help;
};

Documentation Document(ITypeInfo& information, MEMBERID member) {
  AutomationText name;
  AutomationText help;
  information.GetDocumentation(member, name.Receive(), help.Receive(), nullptr, nullptr);
  return {name.ToUtf8(), help.ToUtf8()};
}

std::string NameOfType(ITypeInfo& information, const TYPEDESC& type) {
  switch (type.vt) {
    case VT_PTR:
      return NameOfType(information, *type.lptdesc) + "*";
    case VT_SAFEARRAY:
      return "array of " + NameOfType(information, *type.lptdesc);
    case VT_USERDEFINED: {
      ComPointer<ITypeInfo> other;
      if (FAILED(information.GetRefTypeInfo(type.hreftype, other.Receive()))) return "?";
      return Document(*other.Get(), MEMBERID_NIL).name;
    }
    default:
      return std::to_string(type.vt);
  }
}

std::string DefaultOf(const PARAMDESC& parameter) {
  if ((parameter.wParamFlags & PARAMFLAG_FHASDEFAULT) == 0) return "";
  const VARIANT& value = parameter.pparamdescex->varDefaultValue;
  VARIANT text{};
  if (FAILED(::VariantChangeType(&text, const_cast<VARIANT*>(&value), 0, VT_BSTR))) return "=?";
  const std::string result = "=" + std::to_string(value.vt) + ":" + AutomationText::ToUtf8(text.bstrVal);
  ::VariantClear(&text);
  return result;
}

std::string DirectionOf(const PARAMDESC& parameter) {
  std::string direction;
  if ((parameter.wParamFlags & PARAMFLAG_FIN) != 0) direction += "in ";
  if ((parameter.wParamFlags & PARAMFLAG_FOUT) != 0) direction += "out ";
  if ((parameter.wParamFlags & PARAMFLAG_FOPT) != 0) direction += "optional ";
  return direction;
}

void PrintMember(ITypeInfo& information, const FUNCDESC& member) {
  const Documentation about = Document(information, member.memid);
  std::cout << "member\t" << about.name << "\t" << member.memid << "\t" << member.invkind << "\t" << member.wFuncFlags
            << "\t" << NameOfType(information, member.elemdescFunc.tdesc) << "\t" << about.help;
  std::vector<BSTR> names(static_cast<std::size_t>(member.cParams) + 1, nullptr);
  UINT found = 0;
  information.GetNames(member.memid, names.data(), static_cast<UINT>(names.size()), &found);
  for (int place = 0; place < member.cParams; ++place) {
    const ELEMDESC& parameter = member.lprgelemdescParam[place];
    const BSTR name = names[static_cast<std::size_t>(place) + 1];
    std::cout << "\t" << DirectionOf(parameter.paramdesc) << NameOfType(information, parameter.tdesc)
              << DefaultOf(parameter.paramdesc) << " " << AutomationText::ToUtf8(name);
  }
  for (BSTR name : names) ::SysFreeString(name);
  std::cout << "\n";
}

void PrintClass(ITypeInfo& information, UINT count) {
  for (UINT index = 0; index < count; ++index) {
    HREFTYPE reference = 0;
    INT flags = 0;
    ComPointer<ITypeInfo> implemented;
    information.GetRefTypeOfImplType(index, &reference);
    information.GetImplTypeFlags(index, &flags);
    if (FAILED(information.GetRefTypeInfo(reference, implemented.Receive()))) continue;
    std::cout << "implements\t" << Document(*implemented.Get(), MEMBERID_NIL).name << "\t" << flags << "\n";
  }
}

void PrintMembers(ITypeInfo& information, UINT count) {
  for (UINT index = 0; index < count; ++index) {
    FUNCDESC* member = nullptr;
    if (FAILED(information.GetFuncDesc(index, &member))) continue;
    // The members of IUnknown and IDispatch are listed too.
    if ((static_cast<DWORD>(member->memid) & 0xFF000000U) != 0x60000000U) PrintMember(information, *member);
    information.ReleaseFuncDesc(member);
  }
}

/// The flags of the table of functions behind a dual interface: its description for calls by name has others.
WORD InterfaceFlags(ITypeInfo& information) {
  HREFTYPE reference = 0;
  ComPointer<ITypeInfo> functions;
  TYPEATTR* attributes = nullptr;
  if (FAILED(information.GetRefTypeOfImplType(static_cast<UINT>(-1), &reference))) return 0;
  if (FAILED(information.GetRefTypeInfo(reference, functions.Receive()))) return 0;
  if (FAILED(functions->GetTypeAttr(&attributes))) return 0;
  const WORD flags = attributes->typekind == TKIND_INTERFACE ? attributes->wTypeFlags : WORD{0};
  functions->ReleaseTypeAttr(attributes);
  return flags;
}

void PrintType(ITypeInfo& information) {
  TYPEATTR* attributes = nullptr;
  if (FAILED(information.GetTypeAttr(&attributes))) return;
  wchar_t identifier[40] = {};
  ::StringFromGUID2(attributes->guid, identifier, 40);
  const Documentation about = Document(information, MEMBERID_NIL);
  const WORD more = attributes->typekind == TKIND_DISPATCH ? InterfaceFlags(information) : WORD{0};
  std::cout << "type\t" << about.name << "\t" << attributes->typekind << "\t" << (attributes->wTypeFlags | more) << "\t"
            << tavi::windows::FromWide(identifier) << "\t" << about.help << "\n";
  if (attributes->typekind == TKIND_COCLASS) PrintClass(information, attributes->cImplTypes);
  if (attributes->typekind == TKIND_DISPATCH) PrintMembers(information, attributes->cFuncs);
  information.ReleaseTypeAttr(attributes);
}

void PrintLibrary(ITypeLib& library) {
  TLIBATTR* attributes = nullptr;
  if (FAILED(library.GetLibAttr(&attributes))) return;
  AutomationText name;
  AutomationText help;
  library.GetDocumentation(-1, name.Receive(), help.Receive(), nullptr, nullptr);
  std::cout << "library\t" << name.ToUtf8() << "\t" << attributes->wMajorVerNum << "." << attributes->wMinorVerNum
            << "\t" << help.ToUtf8() << "\n";
  library.ReleaseTLibAttr(attributes);
  for (UINT index = 0; index < library.GetTypeInfoCount(); ++index) {
    ComPointer<ITypeInfo> information;
    if (SUCCEEDED(library.GetTypeInfo(index, information.Receive()))) PrintType(*information.Get());
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  const tavi::windows::ComApartment apartment;
  ComPointer<ITypeLib> library;
  const HRESULT result = ::LoadTypeLibEx(tavi::windows::ToWide(arguments[1]).c_str(), REGKIND_NONE, library.Receive());
  if (FAILED(result)) {
    std::cout << "The type library cannot be loaded: " << std::hex << result << "\n";
    return 1;
  }
  PrintLibrary(*library.Get());
  return 0;
}
