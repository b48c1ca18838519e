#pragma once

#include <TaviMembership.h>

#include "automation/AutomationObject.h"
#include "members/EBUMembershipDetails.h"

namespace tavi::automation {

/// The class EBUMembershipDetails for automation.
class EBUMembershipDetailsObject final : public AutomationObject<_EBUMembershipDetails, ::EBUMembershipDetails> {
 public:
  EBUMembershipDetailsObject() = default;
  explicit EBUMembershipDetailsObject(EBUMembershipDetails values) : details_(std::move(values)) {}

  STDMETHODIMP get_EBUNumber(BSTR* result) override;
  STDMETHODIMP put_EBUNumber(BSTR value) override;
  STDMETHODIMP get_FirstName(BSTR* result) override;
  STDMETHODIMP put_FirstName(BSTR value) override;
  STDMETHODIMP get_LastName(BSTR* result) override;
  STDMETHODIMP put_LastName(BSTR value) override;
  STDMETHODIMP get_CountyCode(BSTR* result) override;
  STDMETHODIMP put_CountyCode(BSTR value) override;
  STDMETHODIMP get_Location(BSTR* result) override;
  STDMETHODIMP put_Location(BSTR value) override;

 private:
  EBUMembershipDetails details_;
};

/// A new object with these values.
windows::ComPointer<_EBUMembershipDetails> MakeEBUMembershipDetails(const EBUMembershipDetails& values);

}  // namespace tavi::automation
