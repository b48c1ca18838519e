// A program with several apartments: "apartments_client FOLDER" uses the registered server on many threads, through
// proxies, releases objects in every order, and unloads the library and loads it again. "apartments_client FOLDER
// leave" ends with everything open. Prints each failed check and a last line with the counts; the exit code is 1 when
// one failed.
#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/ApartmentThread.h"
#include "support/Checks.h"

namespace {

using namespace tavi::automation_test;  // NOLINT(google-build-using-namespace): a program of checks

std::wstring theFolder;

AutomationText Folder(const std::string& name) {
  return AutomationText(tavi::windows::FromWide(theFolder) + (name.empty() ? "" : "\\" + name));
}

/// Makes FOLDER\name with a copy of the club's file.
void CopyClub(const std::wstring& name) {
  ::CreateDirectoryW((theFolder + L"\\" + name).c_str(), nullptr);
  Check("the club's file is copied",
        ::CopyFileW((theFolder + L"\\ClubMembers.mdb").c_str(),
                    (theFolder + L"\\" + name + L"\\ClubMembers.mdb").c_str(), FALSE) != 0);
}

ComPointer<_MembershipDatabase> OpenClub(const std::string& name) {
  auto database = Create<_MembershipDatabase>(__uuidof(MembershipDatabase));
  if (database) CheckResult("DatabaseFolder", database->put_DatabaseFolder(Folder(name).Get()), S_OK);
  return database;
}

HMODULE Library() {
  return ::GetModuleHandleW(L"TaviMembership.dll");
}

/// What the library says to whether it can be unloaded; S_OK when it is not loaded.
HRESULT CanUnload() {
  if (Library() == nullptr) return S_OK;
  const auto entry = std::bit_cast<HRESULT(STDAPICALLTYPE*)()>(::GetProcAddress(Library(), "DllCanUnloadNow"));
  return entry();
}

std::string NameOf(_MembershipDatabase& database, long number) {
  AutomationText name;
  const HRESULT result = database.GetMemberName(number, 0, nullptr, name.Receive());
  return SUCCEEDED(result) ? name.ToUtf8() : "failed";
}

void AddMany(const std::string& club) {
  const auto database = OpenClub(club);
  for (int count = 1; count <= 25; ++count) {
    const std::string last = club + "-" + std::string(static_cast<std::size_t>(count), 'x');
    const long number = AddMember(*database.Get(), "Ann", last.c_str());
    Check("numbers of one club follow each other", number == count);
    Check("names of one club", NameOf(*database.Get(), number) == "Ann " + last);
  }
}

void CheckTwoFolders() {
  CopyClub(L"one");
  CopyClub(L"two");
  ApartmentThread first(COINIT_APARTMENTTHREADED);
  ApartmentThread second(COINIT_APARTMENTTHREADED);
  first.Begin([] { AddMany("one"); });
  second.Begin([] { AddMany("two"); });
  first.Wait();
  second.Wait();
  CheckResult("both have given back all", CanUnload(), S_OK);
}

void CheckForeignThread() {
  const auto database = OpenClub("one");
  ApartmentThread other(COINIT_APARTMENTTHREADED);
  other.Run([&] {
    // Against the rules: the pointer belongs to another apartment.
    VARIANT_BOOL exists = VARIANT_TRUE;
    CheckResult("an object on a thread that has none", database->get_DatabaseExists(&exists),
                static_cast<HRESULT>(0x800A005B));
  });
  VARIANT_BOOL exists = VARIANT_FALSE;
  CheckResult("and on its own again", database->get_DatabaseExists(&exists), S_OK);
  Check("as before", exists == VARIANT_TRUE);
}

bool IsProxy(IUnknown& object) {
  ComPointer<IUnknown> manager;
  return SUCCEEDED(object.QueryInterface(IID_IMultiQI, manager.ReceiveUntyped()));
}

void CheckTextsThroughProxy(_MembershipDatabase& database) {
  const long number = AddMember(database, "Łukasz 𝄞", "Müller");
  BSTR first = AutomationText("old").Detach();
  BSTR initials = nullptr;
  BSTR last = nullptr;
  VARIANT ebuNumber{};
  CheckResult("texts come back", database.GetEBUNoAndNames(number, &first, &initials, &last, &ebuNumber), S_OK);
  Check("with all letters", AutomationText::ToUtf8(first) == "Łukasz 𝄞" && AutomationText::ToUtf8(last) == "Müller");
  Check("and the variant's", ebuNumber.vt == VT_BSTR);
  for (BSTR text : {first, initials, last, ebuNumber.bstrVal}) ::SysFreeString(text);
  SAFEARRAY* matches = nullptr;
  CheckResult("an array comes back", database.FindNearestMatches(AutomationText("Łukasz 𝄞 Müller").Get(), &matches),
              S_OK);
  Check("from 1", matches != nullptr && matches->rgsabound[0].lLbound == 1);
  if (matches != nullptr) ::SafeArrayDestroy(matches);
  double handicap = 0;
  CheckResult("a number", database.GetHandicap(number, &handicap), S_OK);
  Check("of two words", handicap == 50.0);
  long competition = 0;
  CheckResult(
      "a date and truths",
      database.SetCompetitionEx(AutomationText("Monday").Get(), 45446.0, VARIANT_FALSE, 0, 0, VARIANT_FALSE,
                                VARIANT_FALSE, 1, 8, 1, AutomationText("EBU").Get(), 1, VARIANT_TRUE, 0, &competition),
      S_OK);
  Check("make a competition", competition > 0);
  CheckResult("whose update ends", database.EndResultUpdate(competition), S_OK);
  VARIANT_BOOL isPair = VARIANT_TRUE;
  CheckResult("an error keeps its number", database.AddRegularPair(number, number, &isPair),
              static_cast<HRESULT>(0x80040000));
}

void CheckObjectsThroughProxy(_MembershipDatabase& database) {
  ComPointer<_Collection> rows;
  CheckResult("a collection", database.SearchEBUList(nullptr, AutomationText("Smith").Get(), rows.Receive()), S_OK);
  if (!rows) return;
  long count = 0;
  CheckResult("its count", rows->get_Count(&count), S_OK);
  Check("is that of the rows", count == 2);
  ComPointer<IUnknown> unknown;
  ComPointer<IEnumVARIANT> walk;
  CheckResult("its walk", rows->get__NewEnum(unknown.Receive()), S_OK);
  CheckResult("is one", unknown->QueryInterface(IID_IEnumVARIANT, walk.ReceiveUntyped()), S_OK);
  std::array<VARIANT, 3> items{};
  ULONG fetched = 0;
  CheckResult("its items", walk->Next(3, items.data(), &fetched), S_FALSE);
  Check("are all there", fetched == 2 && items[0].vt == VT_DISPATCH && items[1].vt == VT_DISPATCH);
  for (VARIANT& item : items) ::VariantClear(&item);

  const auto settings = Create<_HandiCalcSettings>(__uuidof(HandiCalcSettings));
  settings->put_Disabled(VARIANT_TRUE);
  settings->put_MaxWeeks(11);
  CheckResult("settings are stored", database.putref_HandicalcOptions(settings.Get()), S_OK);
  VARIANT_BOOL disabled = VARIANT_TRUE;
  settings->get_Disabled(&disabled);
  ComPointer<_HandiCalcSettings> stored;
  CheckResult("and read", database.get_HandicalcOptions(stored.Receive()), S_OK);
  short weeks = 0;
  Check("as they were", stored && stored->get_MaxWeeks(&weeks) == S_OK && weeks == 11);
}

void CheckCallByNumberThroughProxy(IDispatch& database) {
  const AutomationText nobody("nobody");
  VARIANT ebuNumber{};
  std::array<VARIANT, 4> arguments = {Of(nobody), ReferenceTo(ebuNumber), Of(0L), Of(99L)};
  DISPPARAMS parameters{arguments.data(), nullptr, 4, 0};
  VARIANT result{};
  CheckResult("a call by number",
              database.Invoke(9, IID_NULL, 0, DISPATCH_METHOD, &parameters, &result, nullptr, nullptr), S_OK);
  Check("gives its result", result.vt == VT_BSTR && AutomationText::ToUtf8(result.bstrVal) == "nobody");
  Check("and passes back", ebuNumber.vt == VT_BSTR);
  ::VariantClear(&result);
  ::VariantClear(&ebuNumber);
}

void CheckFreeThreads() {
  CopyClub(L"three");
  ApartmentThread free(COINIT_MULTITHREADED);
  free.Run([] {
    const auto database = OpenClub("three");
    if (!database) return;
    Check("a thread without an apartment of its own gets a proxy", IsProxy(*database.Get()));
    CheckTextsThroughProxy(*database.Get());
    CheckObjectsThroughProxy(*database.Get());
    CheckCallByNumberThroughProxy(*database.Get());
    CheckResult("CloseDatabase", database->CloseDatabase(), S_OK);
  });
}

void CheckStream() {
  const auto database = OpenClub("one");
  ComPointer<IStream> stream;
  CheckResult("an interface is packed",
              ::CoMarshalInterThreadInterfaceInStream(__uuidof(_MembershipDatabase), database.Get(), stream.Receive()),
              S_OK);
  ApartmentThread other(COINIT_APARTMENTTHREADED);
  other.Run([&] {
    ComPointer<_MembershipDatabase> proxy;
    CheckResult(
        "and unpacked on another thread",
        ::CoGetInterfaceAndReleaseStream(stream.Detach(), __uuidof(_MembershipDatabase), proxy.ReceiveUntyped()), S_OK);
    if (!proxy) return;
    Check("as a proxy", IsProxy(*proxy.Get()));
    Check("for the same store", NameOf(*proxy.Get(), 1) == "Ann one-x");
    // This settings object lives here, the database there.
    const auto settings = Create<_HandiCalcSettings>(__uuidof(HandiCalcSettings));
    settings->put_MaxResults(7);
    CheckResult("settings of another apartment", proxy->putref_HandicalcOptions(settings.Get()), S_OK);
  });
  ComPointer<_HandiCalcSettings> stored;
  short results = 0;
  CheckResult("are copied", database->get_HandicalcOptions(stored.Receive()), S_OK);
  Check("as they were", stored && stored->get_MaxResults(&results) == S_OK && results == 7);
}

/// One of everything that a program can hold.
std::vector<ComPointer<IUnknown>> OneOfEach() {
  std::vector<ComPointer<IUnknown>> all;
  const auto keep = [&all](IUnknown* object) { all.emplace_back(object); };
  auto database = OpenClub("one");
  database->OpenDatabase();
  ComPointer<_HandiCalcSettings> settings;
  ComPointer<_HandiCalcSettings> clone;
  database->get_HandicalcOptions(settings.Receive());
  settings->Clone(clone.Receive());
  ComPointer<_Handicaps> handicaps;
  database->CalculateHandicaps(1, 2, nullptr, 36526.0, VARIANT_FALSE, handicaps.Receive());
  ComPointer<_Collection> rows;
  database->SearchEBUList(nullptr, AutomationText("Smith").Get(), rows.Receive());
  ComPointer<IUnknown> walk;
  rows->get__NewEnum(walk.Receive());
  ComPointer<IEnumVARIANT> walking;
  walk->QueryInterface(IID_IEnumVARIANT, walking.ReceiveUntyped());
  ComPointer<IEnumVARIANT> second;
  walking->Clone(second.Receive());
  VARIANT row{};
  rows->get_Item(Of(1L), &row);
  VARIANT_BOOL isPair = VARIANT_FALSE;
  database->AddRegularPair(1, 1, &isPair);
  ComPointer<IErrorInfo> error;
  ::GetErrorInfo(0, error.Receive());
  ComPointer<IClassFactory> factory;
  ::CoGetClassObject(__uuidof(MembershipDatabase), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                     factory.ReceiveUntyped());
  ComPointer<ITypeInfo> information;
  database->GetTypeInfo(0, 0, information.Receive());
  keep(database.Detach());
  keep(settings.Detach());
  keep(clone.Detach());
  keep(handicaps.Detach());
  keep(rows.Detach());
  keep(walk.Detach());
  keep(walking.Detach());
  keep(second.Detach());
  keep(row.pdispVal);
  keep(error.Detach());
  keep(factory.Detach());
  keep(information.Detach());
  for (const auto& object : all) Check("one of each", static_cast<bool>(object));
  return all;
}

/// Releases them in an order; true when the library can be unloaded when the last of its own is gone and not before.
void CheckOrder(unsigned seed) {
  std::vector<ComPointer<IUnknown>> all = OneOfEach();
  std::vector<std::size_t> order(all.size());
  for (std::size_t index = 0; index < order.size(); ++index) order[index] = index;
  std::mt19937 random(seed);
  if (seed == 1) std::reverse(order.begin(), order.end());
  if (seed > 1) std::shuffle(order.begin(), order.end(), random);
  // Error information and type information are the system's objects.
  const std::size_t ofSystem = 2;
  std::size_t ownLeft = all.size() - ofSystem;
  for (std::size_t index : order) {
    CheckResult("objects are out", CanUnload(), ownLeft > 0 ? S_FALSE : S_OK);
    all[index].Reset();
    if (index != 9 && index != 11) --ownLeft;
  }
  CheckResult("all objects are back, order " + std::to_string(seed), CanUnload(), S_OK);
}

void CheckLocks() {
  ComPointer<IClassFactory> factory;
  ::CoGetClassObject(__uuidof(Handicaps), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, factory.ReceiveUntyped());
  if (!factory) return;
  factory->LockServer(TRUE);
  factory->LockServer(TRUE);
  factory->LockServer(FALSE);
  factory.Reset();
  CheckResult("a lock keeps the library", CanUnload(), S_FALSE);
  ::CoGetClassObject(__uuidof(Handicaps), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, factory.ReceiveUntyped());
  factory->LockServer(FALSE);
  factory.Reset();
  CheckResult("until it is taken back", CanUnload(), S_OK);
}

bool FileIsFree(const std::wstring& club) {
  const std::wstring file = theFolder + L"\\" + club + L"\\ClubMembers.mdb";
  HANDLE handle = ::CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return false;
  ::CloseHandle(handle);
  return true;
}

/// A thread ends while its database is open and nobody has released it.
void CheckForgottenObject() {
  ComPointer<_MembershipDatabase> forgotten;
  {
    ApartmentThread thread(COINIT_APARTMENTTHREADED);
    thread.Run([&] {
      forgotten = OpenClub("two");
      CheckResult("OpenDatabase", forgotten->OpenDatabase(), S_OK);
      long number = 0;
      AutomationText name;
      double handicap = 0;
      VARIANT_BOOL isThere = VARIANT_FALSE;
      CheckResult("a walk that does not end",
                  forgotten->GetFirstMember(&number, name.Receive(), &handicap, 0, &isThere), S_OK);
    });
    Check("the file is open", !FileIsFree(L"two"));
  }
  Check("the end of the thread closes the file", FileIsFree(L"two"));
  CheckResult("its object keeps the library", CanUnload(), S_FALSE);
  forgotten.Reset();
  CheckResult("until it is released", CanUnload(), S_OK);
}

/// An object is released on another thread than its own, which still lives and goes on.
void CheckReleaseElsewhere() {
  ApartmentThread thread(COINIT_APARTMENTTHREADED);
  ComPointer<_MembershipDatabase> database;
  thread.Run([&] { database = OpenClub("two"); });
  database.Reset();
  thread.Run([&] {
    database = OpenClub("two");
    Check("the thread goes on", NameOf(*database.Get(), 1) == "Ann two-x");
    database.Reset();
  });
  CheckResult("all is released", CanUnload(), S_OK);
}

void CheckUnloading() {
  ApartmentThread bystander(COINIT_APARTMENTTHREADED);
  for (int round = 0; round < 12; ++round) {
    {
      const auto database = OpenClub("one");
      Check("a library that was loaded again works", NameOf(*database.Get(), 1) == "Ann one-x");
      ::CoFreeUnusedLibrariesEx(0, 0);
      Check("one in use is not unloaded", Library() != nullptr && NameOf(*database.Get(), 1) == "Ann one-x");
    }
    bystander.Run([] {
      Check("the same on another thread", NameOf(*OpenClub("two").Get(), 1) == "Ann two-x");
      ::CoFreeUnusedLibrariesEx(0, 0);
    });
    ::CoFreeUnusedLibrariesEx(0, 0);
    Check("an unused one is unloaded", Library() == nullptr);
  }
  // The bystander ends when the library that it has used is gone.
}

/// A program that ends with everything open leaves a file that is whole.
void CheckLeaving() {
  CopyClub(L"left");
  std::wstring program(MAX_PATH, L'\0');
  program.resize(::GetModuleFileNameW(nullptr, program.data(), MAX_PATH));
  std::wstring command = L"\"" + program + L"\" \"" + theFolder + L"\" leave";
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  PROCESS_INFORMATION process{};
  if (::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process) == 0) {
    Check("a second program starts", false);
    return;
  }
  WaitAnsweringCalls(process.hProcess);
  DWORD code = 99;
  ::GetExitCodeProcess(process.hProcess, &code);
  ::CloseHandle(process.hProcess);
  ::CloseHandle(process.hThread);
  Check("a program that releases nothing ends well, not with " + std::to_string(code), code == 0);
  Check("and what it did is stored", NameOf(*OpenClub("left").Get(), 1) == "Ann Left");
}

int Leave() {
  auto* database = OpenClub("left").Detach();
  database->OpenDatabase();
  const long number = AddMember(*database, "Ann", "Left");
  auto* thread = new ApartmentThread(COINIT_APARTMENTTHREADED);
  thread->Run([] {
    auto* other = OpenClub("one").Detach();
    other->OpenDatabase();
  });
  return number == 1 ? 0 : 1;
}

void Drive() {
  CheckTwoFolders();
  CheckForeignThread();
  CheckStream();
  CheckFreeThreads();
  for (unsigned seed = 0; seed < 12; ++seed) CheckOrder(seed);
  CheckLocks();
  CheckForgottenObject();
  CheckReleaseElsewhere();
  CheckUnloading();
  CheckLeaving();
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count < 2) return 2;
  theFolder = arguments[1];
  if (count == 3) {
    ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    return Leave();
  }
  {
    const tavi::windows::ComApartment apartment;
    Drive();
  }
  Check("the end of the last apartment unloads the library", Library() == nullptr);
  return Summary();
}
