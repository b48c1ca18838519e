#include "automation/Answer.h"

#include <new>

#include "platform/windows/Com.h"

namespace tavi::automation {
namespace {

// The source of errors that are none of the system's own, such as those of the standard library.
constexpr const char* kSource = "TaviMembership";

/// Leaves a source and a description for the caller, who asks the thread for them. Where the system cannot make the
/// object, the number alone has to do. Raises std::bad_alloc when the texts cannot be made.
void LeaveInformation(const std::string& source, const std::string& description) {
  windows::ComPointer<ICreateErrorInfo> making;
  if (FAILED(::CreateErrorInfo(making.Receive()))) return;
  making->SetSource(windows::AutomationText(source).Get());
  making->SetDescription(windows::AutomationText(description).Get());
  windows::ComPointer<IErrorInfo> information;
  if (FAILED(making->QueryInterface(IID_IErrorInfo, information.ReceiveUntyped()))) return;
  ::SetErrorInfo(0, information.Get());
}

/// The one place that knows which exception becomes which number. Called while one is being handled. A lack of memory
/// gets no description: making one would need memory.
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
    // Describing an error may fail itself, for want of memory; the second attempt describes nothing.
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
