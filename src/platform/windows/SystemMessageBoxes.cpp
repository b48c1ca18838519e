#include "platform/windows/SystemServices.h"

#include <windows.h>

#include "platform/values/WideText.h"

namespace tavi {
namespace {

UINT StyleOf(MessageBoxIcon icon) {
  switch (icon) {
    case MessageBoxIcon::Critical:
      return MB_ICONERROR;
    case MessageBoxIcon::Exclamation:
      return MB_ICONEXCLAMATION;
    case MessageBoxIcon::Information:
      break;
  }
  return MB_ICONINFORMATION;
}

}  // namespace

void SystemMessageBoxes::Show(MessageBoxIcon icon, const std::string& title, const std::string& text) const {
  try {
    // Task modal: without an owner window, all windows of the calling thread wait. In the foreground, because the
    // program that called may be busy behind others, and nobody would dismiss what he does not see.
    ::MessageBoxW(nullptr, windows::ToWide(text).c_str(), windows::ToWide(title).c_str(),
                  MB_OK | MB_TASKMODAL | MB_SETFOREGROUND | StyleOf(icon));
  } catch (const std::exception&) {
    // A message that nobody can be shown is no reason to stop the work it tells of.
    return;
  }
}

}  // namespace tavi
