#include "automation/EBUMembershipDetailsObject.h"

#include "automation/Conversion.h"

namespace tavi::automation {

windows::ComPointer<_EBUMembershipDetails> MakeEBUMembershipDetails(const EBUMembershipDetails& values) {
  return windows::ComPointer<_EBUMembershipDetails>(new EBUMembershipDetailsObject(values));
}

STDMETHODIMP EBUMembershipDetailsObject::get_EBUNumber(BSTR* result) {
  return Answer([&] { Return(result, details_.EBUNumber()); }, result);
}

STDMETHODIMP EBUMembershipDetailsObject::put_EBUNumber(BSTR value) {
  return Answer([&] { details_.SetEBUNumber(ToText(value)); });
}

STDMETHODIMP EBUMembershipDetailsObject::get_FirstName(BSTR* result) {
  return Answer([&] { Return(result, details_.FirstName()); }, result);
}

STDMETHODIMP EBUMembershipDetailsObject::put_FirstName(BSTR value) {
  return Answer([&] { details_.SetFirstName(ToText(value)); });
}

STDMETHODIMP EBUMembershipDetailsObject::get_LastName(BSTR* result) {
  return Answer([&] { Return(result, details_.LastName()); }, result);
}

STDMETHODIMP EBUMembershipDetailsObject::put_LastName(BSTR value) {
  return Answer([&] { details_.SetLastName(ToText(value)); });
}

STDMETHODIMP EBUMembershipDetailsObject::get_CountyCode(BSTR* result) {
  return Answer([&] { Return(result, details_.CountyCode()); }, result);
}

STDMETHODIMP EBUMembershipDetailsObject::put_CountyCode(BSTR value) {
  return Answer([&] { details_.SetCountyCode(ToText(value)); });
}

STDMETHODIMP EBUMembershipDetailsObject::get_Location(BSTR* result) {
  return Answer([&] { Return(result, details_.Location()); }, result);
}

STDMETHODIMP EBUMembershipDetailsObject::put_Location(BSTR value) {
  return Answer([&] { details_.SetLocation(ToText(value)); });
}

}  // namespace tavi::automation
