#include "support/Checks.h"

#include <iomanip>
#include <iostream>
#include <mutex>
#include <sstream>

namespace tavi::automation_test {
namespace {

struct Counts {
  std::mutex mutex;
  int checks = 0;
  int failures = 0;
};

Counts& TheCounts() {
  static Counts counts;
  return counts;
}

/// What the last failure on this thread says about itself, taken away.
std::string Explanation() {
  ComPointer<IErrorInfo> information;
  AutomationText description;
  if (::GetErrorInfo(0, information.Receive()) == S_OK) information->GetDescription(description.Receive());
  return description.ToUtf8();
}

}  // namespace

void Check(const std::string& what, bool holds) {
  Counts& counts = TheCounts();
  const std::lock_guard lock(counts.mutex);
  ++counts.checks;
  if (holds) return;
  ++counts.failures;
  std::cout << "FAILED " << what << std::endl;
}

void CheckResult(const std::string& what, HRESULT got, HRESULT wanted) {
  std::ostringstream text;
  text << what << std::hex << std::uppercase << ": got " << static_cast<unsigned long>(got) << ", want "
       << static_cast<unsigned long>(wanted);
  Check(got == wanted ? what : text.str() + " " + Explanation(), got == wanted);
}

int Summary() {
  const Counts& counts = TheCounts();
  std::cout << counts.checks << " checks, " << counts.failures << " failures" << std::endl;
  return counts.failures == 0 ? 0 : 1;
}

VARIANT OfType(VARTYPE type) {
  VARIANT value{};
  value.vt = type;
  return value;
}

VARIANT LeftOut() {
  VARIANT value = OfType(VT_ERROR);
  value.scode = DISP_E_PARAMNOTFOUND;
  return value;
}

VARIANT Of(long value) {
  VARIANT result = OfType(VT_I4);
  result.lVal = value;
  return result;
}

VARIANT Of(double value) {
  VARIANT result = OfType(VT_R8);
  result.dblVal = value;
  return result;
}

VARIANT Of(const AutomationText& text) {
  VARIANT result = OfType(VT_BSTR);
  result.bstrVal = text.Get();
  return result;
}

VARIANT Of(IDispatch* object) {
  VARIANT result = OfType(VT_DISPATCH);
  result.pdispVal = object;
  return result;
}

VARIANT ReferenceTo(VARIANT& variable) {
  VARIANT result = OfType(VT_BYREF | VT_VARIANT);
  result.pvarVal = &variable;
  return result;
}

VARIANT ReferenceTo(VARTYPE type, void* variable) {
  VARIANT result = OfType(static_cast<VARTYPE>(VT_BYREF | type));
  result.byref = variable;
  return result;
}

long AddMember(_MembershipDatabase& database, const char* first, const char* last) {
  long number = 0;
  CheckResult("AddNewMember",
              database.AddNewMember(AutomationText(first).Get(), AutomationText("").Get(), AutomationText(last).Get(),
                                    LeftOut(), &number),
              S_OK);
  return number;
}

}  // namespace tavi::automation_test
