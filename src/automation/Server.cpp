// The four entries by which the system uses the library.
#include "automation/Answer.h"
#include "automation/ClassFactory.h"
#include "automation/ModuleUse.h"
#include "automation/Registration.h"
#include "platform/windows/Com.h"

using tavi::automation::Answer;

STDAPI DllGetClassObject(REFCLSID identifier, REFIID wanted, LPVOID* result) {
  if (result == nullptr) return E_POINTER;
  *result = nullptr;
  tavi::windows::ComPointer<IClassFactory> factory;
  const HRESULT answer = Answer([&] { *factory.Receive() = tavi::automation::MakeClassFactory(identifier); });
  if (FAILED(answer)) return answer;
  // The factory's own reference is given back here in any case; the caller has the one of the interface that he asked
  // for.
  return factory ? factory->QueryInterface(wanted, result) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
  return tavi::automation::ModuleLock::Count() == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
  return Answer([] { tavi::automation::Register(); });
}

STDAPI DllUnregisterServer() {
  return Answer([] { tavi::automation::Unregister(); });
}
