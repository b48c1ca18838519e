#pragma once

#include <TaviMembership.h>

#include <memory>

#include "automation/AutomationObject.h"
#include "handicaps/HandiCalcSettings.h"

namespace tavi::automation {

/// A HandiCalcSettings for automation. The settings themselves are shared, because a database that they are stored in
/// holds them and not a copy.
class HandiCalcSettingsObject final : public AutomationObject<_HandiCalcSettings, ::HandiCalcSettings> {
 public:
  explicit HandiCalcSettingsObject(std::shared_ptr<HandiCalcSettings> settings) : settings_(std::move(settings)) {}
  [[nodiscard]] const std::shared_ptr<HandiCalcSettings>& Settings() const { return settings_; }

  STDMETHODIMP get_MaxWeeks(short* result) override;
  STDMETHODIMP put_MaxWeeks(short value) override;
  STDMETHODIMP get_MaxResults(short* result) override;
  STDMETHODIMP put_MaxResults(short value) override;
  STDMETHODIMP get_RegularPairMultiplier(double* result) override;
  STDMETHODIMP put_RegularPairMultiplier(double value) override;
  STDMETHODIMP get_RegularPairAdd(double* result) override;
  STDMETHODIMP put_RegularPairAdd(double value) override;
  STDMETHODIMP get_UnknownPlayerHandicap(double* result) override;
  STDMETHODIMP put_UnknownPlayerHandicap(double value) override;
  STDMETHODIMP get_Disabled(VARIANT_BOOL* result) override;
  STDMETHODIMP put_Disabled(VARIANT_BOOL value) override;
  STDMETHODIMP Clone(_HandiCalcSettings** result) override;
  STDMETHODIMP SetDefaults() override;
  STDMETHODIMP get_SamePartnerWeighting(short* result) override;
  STDMETHODIMP put_SamePartnerWeighting(short value) override;
  STDMETHODIMP get_IncludesRegularPairAdjustment(VARIANT_BOOL* result) override;
  STDMETHODIMP AdjustRegularPair(double GrossHandicap, double* result) override;

 private:
  void* Find(REFIID wanted) override;

  std::shared_ptr<HandiCalcSettings> settings_;
};

/// A new object with these values.
windows::ComPointer<_HandiCalcSettings> MakeSettings(const HandiCalcSettings& settings);

/// The settings of an object: shared with it when it is one of ours, else a copy of what it says; none of a null one.
/// Raises the error of an object that cannot say.
std::shared_ptr<HandiCalcSettings> SettingsOf(_HandiCalcSettings* object);

}  // namespace tavi::automation
