#include "platform/windows/SystemServices.h"

#include "platform/windows/Com.h"

namespace tavi {

/// The interface of the class: these members in this order behind those of every automation object. It stands outside
/// of the unnamed namespace, where the compiler would take it that no class implements it, and drop the calls.
struct NameKeyMaker : public IDispatch {
  virtual HRESULT STDMETHODCALLTYPE PutInput(BSTR text) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutMode(LONG mode) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetKey(BSTR* key) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetSurnameMode(LONG* mode) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetFirstNameMode(LONG* mode) = 0;

 protected:
  ~NameKeyMaker() = default;
};

namespace {

using windows::AutomationText;
using windows::ComPointer;

// The class and its interface are those of another program, known to this one by identifiers and order of members only.
constexpr GUID kClass = {0x1926D4B2, 0xC320, 0x11D1, {0x94, 0x59, 0x00, 0x00, 0x4B, 0x40, 0x2E, 0x6B}};
constexpr GUID kInterface = {0x1926D4B1, 0xC320, 0x11D1, {0x94, 0x59, 0x00, 0x00, 0x4B, 0x40, 0x2E, 0x6B}};
constexpr const wchar_t* kLibraryKey = L"CLSID\\{1926D4B2-C320-11D1-9459-00004B402E6B}\\InprocServer32";
constexpr const wchar_t* kProgramKey = L"CLSID\\{1926D4B2-C320-11D1-9459-00004B402E6B}\\LocalServer32";
constexpr DWORD kLibraryOrProgram = CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER;
// For failures about which the class itself says nothing.
constexpr const char* kFailure = "The name-key service could not make a key";

/// True when the merged view of machine and user has the key. Which file it names is not looked at: an entry that leads
/// nowhere has to fail loudly, for keys of another service must not be mixed with stored ones.
bool ClassesHold(const wchar_t* path) {
  HKEY key = nullptr;
  if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, path, 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  ::RegCloseKey(key);
  return true;
}

/// Raises a failed call as an error that says what the object left to be said about it.
void RequireCall(HRESULT result) {
  if (SUCCEEDED(result)) return;
  ComPointer<IErrorInfo> information;
  AutomationText source;
  AutomationText description;
  // The object says what went wrong in the thread's error information; reading it takes it away.
  if (::GetErrorInfo(0, information.Receive()) == S_OK) {
    static_cast<void>(information->GetSource(source.Receive()));
    static_cast<void>(information->GetDescription(description.Receive()));
  }
  const std::string text = description.ToUtf8();
  // Nothing was said: the system's text for the number is better than none.
  if (text.empty()) windows::Require(result, kFailure);
  const std::string name = source.ToUtf8();
  throw Error(static_cast<std::int32_t>(result), name.empty() ? "TaviMembership" : name, text);
}

/// One object of the class, and the apartment that it lives in. The apartment is set up first and given back last,
/// after the object's only reference: members are destroyed in the reverse order.
class Maker {
 public:
  Maker() {
    // What an earlier failure has left says nothing about this one.
    static_cast<void>(::SetErrorInfo(0, nullptr));
    windows::Require(::CoCreateInstance(kClass, nullptr, kLibraryOrProgram, kInterface, object_.ReceiveUntyped()),
                     kFailure);
  }

  [[nodiscard]] std::string Key(NameKeyMode mode, std::string_view name) const {
    LONG number = 0;
    // The numbers of the modes are asked of the object, since they are its own affair. A key is of the mode and the
    // text that were set last, so they are set in this order before each.
    RequireCall(mode == NameKeyMode::Surname ? object_->GetSurnameMode(&number) : object_->GetFirstNameMode(&number));
    RequireCall(object_->PutMode(number));
    RequireCall(object_->PutInput(AutomationText(name).Get()));
    AutomationText key;
    RequireCall(object_->GetKey(key.Receive()));
    return key.ToUtf8();
  }

 private:
  windows::ComApartment apartment_;
  ComPointer<NameKeyMaker> object_;
};

}  // namespace

bool OutsideNameKeys::IsRegistered() {
  if (ClassesHold(kLibraryKey) || ClassesHold(kProgramKey)) return true;
  // A class object that this process has registered stands in no registry; only the system's own table knows it.
  const windows::ComApartment apartment;
  ComPointer<IClassFactory> factory;
  return SUCCEEDED(
      ::CoGetClassObject(kClass, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, factory.ReceiveUntyped()));
}

std::string OutsideNameKeys::Key(NameKeyMode mode, std::string_view name) const {
  return Maker().Key(mode, name);
}

NameKeys OutsideNameKeys::Keys(std::string_view surname, std::string_view firstName) const {
  const Maker maker;
  std::string surnameKey = maker.Key(NameKeyMode::Surname, surname);
  return {std::move(surnameKey), maker.Key(NameKeyMode::FirstName, firstName)};
}

}  // namespace tavi
