#pragma once

#include <windows.h>

#include <string>

namespace tavi::service_test {

/// What the fake name-key class does and has done. The library that holds it hands it out ("FakeKeysState"), to be used
/// on one thread.
struct FakeKeysState {
  /// The numbers of the two modes.
  LONG surnameMode = 11;
  LONG firstNameMode = 22;
  /// The result of creating an object, and of asking for a key; a failed key says why when this is set.
  HRESULT creation = S_OK;
  HRESULT key = S_OK;
  std::wstring reason;
  /// The calls since it was emptied, each with a blank behind it: new surnameMode= firstNameMode= mode:11 input:Smyth
  /// key free.
  std::wstring calls;
};

}  // namespace tavi::service_test
