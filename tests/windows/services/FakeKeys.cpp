// A library with a fake of the outside name-key class. Its keys show mode and name: "11-SMYTH".
#include "services/FakeKeys.h"

#include <windows.h>

#include <oleauto.h>

#include <atomic>

namespace tavi::service_test {
namespace {

constexpr GUID kClass = {0x1926D4B2, 0xC320, 0x11D1, {0x94, 0x59, 0x00, 0x00, 0x4B, 0x40, 0x2E, 0x6B}};
constexpr GUID kInterface = {0x1926D4B1, 0xC320, 0x11D1, {0x94, 0x59, 0x00, 0x00, 0x4B, 0x40, 0x2E, 0x6B}};

FakeKeysState& State() {
  static FakeKeysState state;
  return state;
}

void Note(const std::wstring& call) {
  State().calls += call + L" ";
}

/// The interface as outside programs call it: by the places of its members.
struct KeyMaker : public IDispatch {
  virtual HRESULT STDMETHODCALLTYPE PutText(BSTR text) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutEncoding(LONG mode) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetResult(BSTR* key) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetLastNameEncoding(LONG* mode) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetFirstNameEncoding(LONG* mode) = 0;

 protected:
  ~KeyMaker() = default;
};

class FakeKeyMaker final : public KeyMaker {
 public:
  FakeKeyMaker() { Note(L"new"); }

  STDMETHODIMP QueryInterface(REFIID identifier, void** object) override {
    *object = nullptr;
    if (identifier != kInterface && identifier != IID_IUnknown && identifier != IID_IDispatch) return E_NOINTERFACE;
    *object = static_cast<KeyMaker*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      Note(L"free");
      delete this;
    }
    return left;
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }

  STDMETHODIMP PutText(BSTR text) override {
    text_.assign(text == nullptr ? L"" : text, ::SysStringLen(text));
    Note(L"input:" + text_);
    return S_OK;
  }
  STDMETHODIMP PutEncoding(LONG mode) override {
    mode_ = mode;
    Note(L"mode:" + std::to_wstring(mode));
    return S_OK;
  }
  STDMETHODIMP GetResult(BSTR* key) override {
    Note(L"key");
    if (FAILED(State().key)) return Failed();
    std::wstring made = text_.empty() ? L"" : std::to_wstring(mode_) + L"-" + text_;
    ::CharUpperBuffW(made.data(), static_cast<DWORD>(made.size()));
    *key = ::SysAllocString(made.c_str());
    return S_OK;
  }
  STDMETHODIMP GetLastNameEncoding(LONG* mode) override {
    Note(L"surnameMode=");
    *mode = State().surnameMode;
    return S_OK;
  }
  STDMETHODIMP GetFirstNameEncoding(LONG* mode) override {
    Note(L"firstNameMode=");
    *mode = State().firstNameMode;
    return S_OK;
  }

 private:
  ~FakeKeyMaker() = default;

  static HRESULT Failed() {
    ICreateErrorInfo* creation = nullptr;
    if (!State().reason.empty() && SUCCEEDED(::CreateErrorInfo(&creation))) {
      creation->SetSource(const_cast<LPOLESTR>(L"Name keys"));
      creation->SetDescription(State().reason.data());
      IErrorInfo* information = nullptr;
      if (SUCCEEDED(creation->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&information)))) {
        ::SetErrorInfo(0, information);
        information->Release();
      }
      creation->Release();
    }
    return State().key;
  }

  std::atomic<ULONG> references_ = 1;
  std::wstring text_;
  LONG mode_ = 0;
};

/// One for the life of the library.
class Factory final : public IClassFactory {
 public:
  virtual ~Factory() = default;
  STDMETHODIMP QueryInterface(REFIID identifier, void** object) override {
    *object = identifier == IID_IUnknown || identifier == IID_IClassFactory ? this : nullptr;
    return *object == nullptr ? E_NOINTERFACE : S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID identifier, void** object) override {
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    if (FAILED(State().creation)) return State().creation;
    auto* const maker = new FakeKeyMaker();
    const HRESULT result = maker->QueryInterface(identifier, object);
    maker->Release();
    return result;
  }
  STDMETHODIMP LockServer(BOOL /*locks*/) override { return S_OK; }
};

Factory& TheFactory() {
  static Factory factory;
  return factory;
}

}  // namespace
}  // namespace tavi::service_test

extern "C" {

__declspec(dllexport) tavi::service_test::FakeKeysState* FakeKeysState() {
  return &tavi::service_test::State();
}

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID identifier, REFIID interfaceIdentifier, void** object) {
  if (identifier != tavi::service_test::kClass) return CLASS_E_CLASSNOTAVAILABLE;
  return tavi::service_test::TheFactory().QueryInterface(interfaceIdentifier, object);
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() {
  return S_FALSE;
}
}
