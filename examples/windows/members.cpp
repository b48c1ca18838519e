// Lists the members of a club through the interfaces of the registered server. Needs the header TaviMembership.h:
//   x86_64-w64-mingw32-g++ -municode -static members.cpp -lole32 -loleaut32 -luuid -o members.exe
#include <windows.h>

#include <TaviMembership.h>

#include <cwchar>

namespace {

// Prints the rich error of a call that failed.
bool Succeeded(HRESULT result) {
  if (SUCCEEDED(result)) return true;
  IErrorInfo* information = nullptr;
  BSTR description = nullptr;
  if (GetErrorInfo(0, &information) == S_OK) {
    information->GetDescription(&description);
    information->Release();
  }
  std::wprintf(L"Error %08lX: %ls\n", static_cast<unsigned long>(result), description == nullptr ? L"" : description);
  SysFreeString(description);
  return false;
}

void List(_MembershipDatabase& database) {
  long number = 0;
  BSTR name = nullptr;
  double handicap = 0;
  VARIANT_BOOL found = VARIANT_FALSE;
  bool isFine = Succeeded(database.GetFirstMember(&number, &name, &handicap, 0, &found));
  while (isFine && found != VARIANT_FALSE) {
    std::wprintf(L"%ld\t%ls\t%.2f\n", number, name, handicap);
    isFine = Succeeded(database.GetNextMember(&number, &name, &handicap, 0, &found));
  }
  SysFreeString(name);
  database.EndGet();
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  void* object = nullptr;
  if (Succeeded(CoCreateInstance(__uuidof(MembershipDatabase), nullptr, CLSCTX_INPROC_SERVER,
                                 __uuidof(_MembershipDatabase), &object))) {
    auto* database = static_cast<_MembershipDatabase*>(object);
    if (count > 1) {
      BSTR folder = SysAllocString(arguments[1]);
      Succeeded(database->put_DatabaseFolder(folder));
      SysFreeString(folder);
    }
    List(*database);
    database->Release();
  }
  CoUninitialize();
  return 0;
}
