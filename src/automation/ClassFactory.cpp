#include "automation/ClassFactory.h"

#include <mutex>
#include <optional>

#include "automation/Objects.h"

namespace tavi::automation {
namespace {

/// A class object. It keeps the library loaded while somebody has it; once other apartments have it, as long as they
/// are connected, for the system may forget a reference of its own to what it has handed to them.
class ClassFactory final : public IClassFactory, public IExternalConnection {
 public:
  explicit ClassFactory(const CreatableClass& made) : made_(made) {}
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;

  STDMETHODIMP QueryInterface(REFIID wanted, void** result) override {
    if (result == nullptr) return E_POINTER;
    *result = Find(wanted);
    if (*result == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID wanted, void** result) override {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    // A new MembershipDatabase replaces its thread's store; one that nobody gets must not.
    if (!IsInterfaceOfObjects(wanted, made_.interfaceIdentifier)) return E_NOINTERFACE;
    windows::ComPointer<IUnknown> object;
    const HRESULT answer = Answer([&] { *object.Receive() = made_.create(); });
    return FAILED(answer) ? answer : object->QueryInterface(wanted, result);
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    if (lock != FALSE) {
      ModuleLock::Add();
    } else {
      ModuleLock::Remove();
    }
    return S_OK;
  }

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
  // Only the last Release destroys it.
  virtual ~ClassFactory() = default;

  void* Find(REFIID wanted) {
    if (wanted == IID_IUnknown || wanted == IID_IClassFactory) return static_cast<IClassFactory*>(this);
    return wanted == IID_IExternalConnection ? static_cast<IExternalConnection*>(this) : nullptr;
  }

  const CreatableClass& made_;
  std::atomic<ULONG> references_{1};
  std::mutex connectionsMutex_;
  DWORD connections_ = 0;
  std::optional<ModuleLock> lock_{std::in_place};
};

template <typename Object, typename Interface, typename... Values>
IUnknown* New(Values&&... values) {
  return static_cast<Interface*>(new Object(std::forward<Values>(values)...));
}

}  // namespace

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
