#pragma once

#include <TaviMembership.h>

#include "automation/AutomationObject.h"
#include "handicaps/Handicaps.h"

namespace tavi::automation {

/// The class Handicaps for automation.
class HandicapsObject final : public AutomationObject<_Handicaps, ::Handicaps> {
 public:
  HandicapsObject() = default;
  explicit HandicapsObject(const Handicaps& values) : handicaps_(values) {}

  STDMETHODIMP get_PartnershipHandicap(double* result) override;
  STDMETHODIMP put_PartnershipHandicap(double value) override;
  STDMETHODIMP get_Player1Handicap(double* result) override;
  STDMETHODIMP put_Player1Handicap(double value) override;
  STDMETHODIMP get_Player2Handicap(double* result) override;
  STDMETHODIMP put_Player2Handicap(double value) override;

 private:
  Handicaps handicaps_;
};

/// A new object with these values.
windows::ComPointer<_Handicaps> MakeHandicaps(const Handicaps& values);

}  // namespace tavi::automation
