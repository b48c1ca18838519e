#include "platform/windows/OutsideNameKeys.h"

#include "platform/windows/Com.h"

namespace tavi {
namespace {

using windows::AutomationText;
using windows::Require;

constexpr GUID kClass = {0x1926D4B2, 0xC320, 0x11D1, {0x94, 0x59, 0x00, 0x00, 0x4B, 0x40, 0x2E, 0x6B}};
constexpr GUID kInterface = {0x1926D4B1, 0xC320, 0x11D1, {0x94, 0x59, 0x00, 0x00, 0x4B, 0x40, 0x2E, 0x6B}};
constexpr const wchar_t* kClassKey = L"CLSID\\{1926D4B2-C320-11D1-9459-00004B402E6B}\\InprocServer32";

/// The interface of the class: these members in this order behind those of every automation object.
struct KeyMaker : public IDispatch {
  virtual HRESULT STDMETHODCALLTYPE PutInput(BSTR text) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutMode(LONG mode) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetKey(BSTR* key) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetSurnameMode(LONG* mode) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetFirstNameMode(LONG* mode) = 0;

 protected:
  ~KeyMaker() = default;
};

}  // namespace

bool OutsideNameKeys::IsRegistered() {
  HKEY key = nullptr;
  if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, kClassKey, 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  ::RegCloseKey(key);
  return true;
}

std::string OutsideNameKeys::Key(NameKeyMode mode, std::string_view name) const {
  const windows::ComApartment apartment;
  const std::string action = "The name-key service could not make a key";
  windows::ComPointer<KeyMaker> maker;
  Require(::CoCreateInstance(kClass, nullptr, CLSCTX_INPROC_SERVER, kInterface, maker.ReceiveUntyped()), action);
  LONG modeNumber = 0;
  Require(mode == NameKeyMode::Surname ? maker->GetSurnameMode(&modeNumber) : maker->GetFirstNameMode(&modeNumber),
          action);
  Require(maker->PutMode(modeNumber), action);
  Require(maker->PutInput(AutomationText(name).Get()), action);
  AutomationText key;
  Require(maker->GetKey(key.Receive()), action);
  return key.ToUtf8();
}

}  // namespace tavi
