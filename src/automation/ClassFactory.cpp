#include "automation/ClassFactory.h"

#include <mutex>
#include <optional>

#include "automation/Objects.h"

namespace tavi::automation {
namespace {

/// A class object. It keeps the library loaded while somebody has it; once other apartments have it, as long as they
/// are connected, for the system may forget a reference of its own to what it has handed to them.
class ClassFactory final : public CountedObject<IClassFactory, IExternalConnection> {
 public:
  explicit ClassFactory(const CreatableClass& made) : made_(made) {}

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID wanted, void** result) override {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    // A new MembershipDatabase replaces its thread's store; one that nobody gets must not.
    // So the interface is judged before anything is made, and the only failure left is that of making.
    if (!IsInterfaceOfObjects(wanted, made_.interfaceIdentifier)) return E_NOINTERFACE;
    windows::ComPointer<IUnknown> object;
    const HRESULT answer = Answer([&] { *object.Receive() = made_.create(); });
    return FAILED(answer) ? answer : object->QueryInterface(wanted, result);
  }
  // A program that will create objects again and again keeps the library loaded in this way; who locks unlocks.
  STDMETHODIMP LockServer(BOOL lock) override {
    if (lock != FALSE) {
      ModuleLock::Add();
    } else {
      ModuleLock::Remove();
    }
    return S_OK;
  }

  // The system calls these two as proxies in other apartments come and go; they may run on any thread. Until the first
  // strong connection the lock stands for whoever has a reference; from then on for the connections, and with the last
  // of them it goes, even if a reference of the system's own is never given back.
  STDMETHODIMP_(DWORD) AddConnection(DWORD kind, DWORD /*reserved*/) override {
    if ((kind & EXTCONN_STRONG) == 0) return 0;
    const std::lock_guard guard(connectionsMutex_);
    if (!lock_) lock_.emplace();
    return ++connections_;
  }
  STDMETHODIMP_(DWORD) ReleaseConnection(DWORD kind, DWORD /*reserved*/, BOOL /*lastCloses*/) override {
    if ((kind & EXTCONN_STRONG) == 0) return 0;
    const std::lock_guard guard(connectionsMutex_);
    if (connections_ > 0) --connections_;
    if (connections_ == 0) lock_.reset();
    return connections_;
  }

 private:
  void* Find(REFIID wanted) override {
    if (wanted == IID_IUnknown || wanted == IID_IClassFactory) return static_cast<IClassFactory*>(this);
    return wanted == IID_IExternalConnection ? static_cast<IExternalConnection*>(this) : nullptr;
  }

  const CreatableClass& made_;
  std::mutex connectionsMutex_;
  DWORD connections_ = 0;
  std::optional<ModuleLock> lock_{std::in_place};
};

/// The object's base of its own interface, since an object has several bases of which each is an IUnknown.
template <typename Object, typename Interface, typename... Values>
IUnknown* New(Values&&... values) {
  return static_cast<Interface*>(new Object(std::forward<Values>(values)...));
}

}  // namespace

// The identifiers are those of the type library; the names and descriptions are what the registry shows.
const std::vector<CreatableClass>& CreatableClasses() {
  static const std::vector<CreatableClass> classes = {
      {__uuidof(::MembershipDatabase), L"MembershipDatabase", L"A bridge club's membership records",
       __uuidof(_MembershipDatabase), [] { return New<MembershipDatabaseObject, _MembershipDatabase>(); }},
      {__uuidof(::HandiCalcSettings), L"HandiCalcSettings", L"Settings of the handicap calculation",
       __uuidof(_HandiCalcSettings),
       [] { return New<HandiCalcSettingsObject, _HandiCalcSettings>(std::make_shared<HandiCalcSettings>()); }},
      {__uuidof(::Handicaps), L"Handicaps", L"Result of a handicap calculation", __uuidof(_Handicaps),
       [] { return New<HandicapsObject, _Handicaps>(Handicaps()); }},
      {__uuidof(::EBUMembershipDetails), L"EBUMembershipDetails", L"One row of the governing body's membership list",
       __uuidof(_EBUMembershipDetails),
       [] { return New<EBUMembershipDetailsObject, _EBUMembershipDetails>(EBUMembershipDetails()); }},
  };
  return classes;
}

IClassFactory* MakeClassFactory(REFCLSID identifier) {
  for (const CreatableClass& candidate : CreatableClasses()) {
    if (candidate.identifier == identifier) return new ClassFactory(candidate);
  }
  return nullptr;
}

}  // namespace tavi::automation
