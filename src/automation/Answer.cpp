#include "automation/Answer.h"

#include <new>

#include "platform/windows/Com.h"

namespace tavi::automation {
namespace {

constexpr const char* kSource = "TaviMembership";

void LeaveInformation(const std::string& source, const std::string& description) {
  windows::ComPointer<ICreateErrorInfo> making;
  if (FAILED(::CreateErrorInfo(making.Receive()))) return;
  making->SetSource(windows::AutomationText(source).Get());
  making->SetDescription(windows::AutomationText(description).Get());
  windows::ComPointer<IErrorInfo> information;
  if (FAILED(making->QueryInterface(IID_IErrorInfo, information.ReceiveUntyped()))) return;
  ::SetErrorInfo(0, information.Get());
}

HRESULT Classify() {
  try {
    throw;
  } catch (const Error& error) {
    LeaveInformation(error.Source(), error.Description());
    // A number without the sign of a failure would be taken for success.
    return FAILED(error.Number()) ? error.Number() : E_FAIL;
  } catch (const std::bad_alloc&) {
    return WithoutInformation(E_OUTOFMEMORY);
  } catch (const std::exception& error) {
    LeaveInformation(kSource, error.what());
    return E_FAIL;
  }
}

}  // namespace

HRESULT ResultOfException() noexcept {
  try {
    return Classify();
  } catch (const std::bad_alloc&) {
    return WithoutInformation(E_OUTOFMEMORY);
  } catch (...) {
    return WithoutInformation(E_FAIL);
  }
}

HRESULT WithoutInformation(HRESULT result) noexcept {
  ::SetErrorInfo(0, nullptr);
  return result;
}

}  // namespace tavi::automation
