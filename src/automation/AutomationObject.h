#pragma once

#include <ocidl.h>

#include <algorithm>
#include <atomic>

#include "automation/Answer.h"
#include "automation/LateCall.h"
#include "automation/ModuleUse.h"
#include "automation/TypeInformation.h"

namespace tavi::automation {

/// Whether the objects whose own interface is `own` have the interface `wanted`.
inline bool IsInterfaceOfObjects(REFIID wanted, REFIID own) {
  return wanted == own || wanted == IID_IUnknown || wanted == IID_IDispatch || wanted == IID_IProvideClassInfo ||
         wanted == IID_ISupportErrorInfo;
}

/// An object that lives as long as somebody has a reference to it; the one who makes it has the first.
template <typename... Interfaces>
class CountedObject : public Interfaces... {
 public:
  CountedObject() = default;
  CountedObject(const CountedObject&) = delete;
  CountedObject& operator=(const CountedObject&) = delete;

  STDMETHODIMP QueryInterface(REFIID wanted, void** result) override {
    if (result == nullptr) return E_POINTER;
    *result = Find(wanted);
    if (*result == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    // Read once: another thread may take the last reference away right behind the subtraction.
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  // Only the last Release destroys it.
  virtual ~CountedObject() = default;

  /// One of the interfaces of this object, without a new reference; null for others.
  virtual void* Find(REFIID wanted) = 0;

 private:
  // The system's own threads release objects too, when an apartment ends.
  std::atomic<ULONG> references_{1};
};

/// What every object of the server is: callable through its interface and by name, with rich errors, and able to tell
/// its class. An object is used on the thread that created it.
template <typename Interface, typename Class>
class AutomationObject : public CountedObject<Interface, IProvideClassInfo, ISupportErrorInfo> {
 public:
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    return Answer([&] { *count = 1; }, count);
  }
  STDMETHODIMP GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** result) override {
    HRESULT found = S_OK;
    const HRESULT answer = Answer(
        [&] {
          if (index != 0) {
            found = DISP_E_BADINDEX;
            return;
          }
          *result = Information();
          (*result)->AddRef();
        },
        result);
    return FAILED(answer) ? answer : found;
  }
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID /*locale*/, DISPID* members) override {
    if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (names == nullptr || members == nullptr || std::find(names, names + count, nullptr) != names + count) {
      return E_POINTER;
    }
    HRESULT result = S_OK;
    const HRESULT answer = Answer([&] { result = Information()->GetIDsOfNames(names, count, members); });
    return FAILED(answer) ? answer : result;
  }
  STDMETHODIMP Invoke(DISPID member, REFIID reserved, LCID /*locale*/, WORD flags, DISPPARAMS* parameters,
                      VARIANT* value, EXCEPINFO* exception, UINT* badArgument) override {
    if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (parameters == nullptr) return E_POINTER;
    // A script's variable that gets a value may hold the last reference to this object.
    this->AddRef();
    const windows::ComPointer<Interface> alive(this);
    HRESULT result = S_OK;
    const HRESULT answer = Answer([&] { result = Call(member, flags, *parameters, value, exception, badArgument); });
    return FAILED(answer) ? answer : result;
  }

  STDMETHODIMP GetClassInfo(ITypeInfo** result) override {
    return Answer([&] { *result = TypeInformationOf(__uuidof(Class)).Detach(); }, result);
  }

  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID wanted) override {
    return wanted == __uuidof(Interface) ? S_OK : S_FALSE;
  }

 protected:
  void* Find(REFIID wanted) override {
    if (wanted == IID_ISupportErrorInfo) return static_cast<ISupportErrorInfo*>(this);
    if (wanted == IID_IProvideClassInfo) return static_cast<IProvideClassInfo*>(this);
    return IsInterfaceOfObjects(wanted, __uuidof(Interface)) ? static_cast<Interface*>(this) : nullptr;
  }

 private:
  ITypeInfo* Information() {
    if (!information_) information_ = TypeInformationOf(__uuidof(Interface));
    return information_.Get();
  }

  HRESULT Call(DISPID member, WORD flags, DISPPARAMS& parameters, VARIANT* value, EXCEPINFO* exception,
               UINT* badArgument) {
    LateCall call(*Information(), member, flags, parameters);
    HRESULT result = call.Prepare(badArgument);
    if (FAILED(result)) return result;
    // What an earlier failure left must not be taken for this one's.
    ::SetErrorInfo(0, nullptr);
    result = Information()->Invoke(static_cast<Interface*>(this), member, call.Flags(), call.Parameters(), value,
                                   exception, badArgument);
    if (FAILED(result)) return result;
    const HRESULT passedBack = call.PassBack();
    return FAILED(passedBack) ? passedBack : MakeReadableForScripts(value);
  }

  ModuleLock lock_;
  windows::ComPointer<ITypeInfo> information_;
};

}  // namespace tavi::automation
