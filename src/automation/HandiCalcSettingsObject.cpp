#include "automation/HandiCalcSettingsObject.h"

#include "automation/Conversion.h"

namespace tavi::automation {
namespace {

// Asked of an object, tells whether it is one of ours. It is no interface of other programs.
constexpr GUID kOwnObject = {0x64c671ca, 0x25fa, 0x488b, {0xbf, 0x95, 0x2f, 0x7a, 0x3c, 0x28, 0xbf, 0x4b}};

template <typename Value>
Value Ask(_HandiCalcSettings& object, HRESULT (STDMETHODCALLTYPE _HandiCalcSettings::*get)(Value*)) {
  Value value{};
  windows::Require((object.*get)(&value), "The settings cannot be read from their object");
  return value;
}

std::shared_ptr<HandiCalcSettings> CopyOf(_HandiCalcSettings& object) {
  auto copy = std::make_shared<HandiCalcSettings>();
  copy->SetMaxWeeks(Ask(object, &_HandiCalcSettings::get_MaxWeeks));
  copy->SetMaxResults(Ask(object, &_HandiCalcSettings::get_MaxResults));
  copy->SetSamePartnerWeighting(Ask(object, &_HandiCalcSettings::get_SamePartnerWeighting));
  copy->SetRegularPairMultiplier(Ask(object, &_HandiCalcSettings::get_RegularPairMultiplier));
  copy->SetRegularPairAdd(Ask(object, &_HandiCalcSettings::get_RegularPairAdd));
  copy->SetUnknownPlayerHandicap(Ask(object, &_HandiCalcSettings::get_UnknownPlayerHandicap));
  copy->SetDisabled(ToBool(Ask(object, &_HandiCalcSettings::get_Disabled)));
  return copy;
}

}  // namespace

windows::ComPointer<_HandiCalcSettings> MakeSettings(const HandiCalcSettings& settings) {
  return windows::ComPointer<_HandiCalcSettings>(
      new HandiCalcSettingsObject(std::make_shared<HandiCalcSettings>(settings)));
}

std::shared_ptr<HandiCalcSettings> SettingsOf(_HandiCalcSettings* object) {
  if (object == nullptr) return nullptr;
  void* own = nullptr;
  if (FAILED(object->QueryInterface(kOwnObject, &own))) return CopyOf(*object);
  const windows::ComPointer<HandiCalcSettingsObject> settings(static_cast<HandiCalcSettingsObject*>(own));
  return settings->Settings();
}

void* HandiCalcSettingsObject::Find(REFIID wanted) {
  return wanted == kOwnObject ? this : AutomationObject::Find(wanted);
}

STDMETHODIMP HandiCalcSettingsObject::get_MaxWeeks(short* result) {
  return Answer([&] { Return(result, settings_->MaxWeeks()); }, result);
}

STDMETHODIMP HandiCalcSettingsObject::put_MaxWeeks(short value) {
  return Answer([&] { settings_->SetMaxWeeks(value); });
}

STDMETHODIMP HandiCalcSettingsObject::get_MaxResults(short* result) {
  return Answer([&] { Return(result, settings_->MaxResults()); }, result);
}

STDMETHODIMP HandiCalcSettingsObject::put_MaxResults(short value) {
  return Answer([&] { settings_->SetMaxResults(value); });
}

STDMETHODIMP HandiCalcSettingsObject::get_RegularPairMultiplier(double* result) {
  return Answer([&] { Return(result, settings_->RegularPairMultiplier()); }, result);
}

STDMETHODIMP HandiCalcSettingsObject::put_RegularPairMultiplier(double value) {
  return Answer([&] { settings_->SetRegularPairMultiplier(value); });
}

STDMETHODIMP HandiCalcSettingsObject::get_RegularPairAdd(double* result) {
  return Answer([&] { Return(result, settings_->RegularPairAdd()); }, result);
}

STDMETHODIMP HandiCalcSettingsObject::put_RegularPairAdd(double value) {
  return Answer([&] { settings_->SetRegularPairAdd(value); });
}

STDMETHODIMP HandiCalcSettingsObject::get_UnknownPlayerHandicap(double* result) {
  return Answer([&] { Return(result, settings_->UnknownPlayerHandicap()); }, result);
}

STDMETHODIMP HandiCalcSettingsObject::put_UnknownPlayerHandicap(double value) {
  return Answer([&] { settings_->SetUnknownPlayerHandicap(value); });
}

STDMETHODIMP HandiCalcSettingsObject::get_Disabled(VARIANT_BOOL* result) {
  return Answer([&] { Return(result, settings_->Disabled()); }, result);
}

STDMETHODIMP HandiCalcSettingsObject::put_Disabled(VARIANT_BOOL value) {
  return Answer([&] { settings_->SetDisabled(ToBool(value)); });
}

STDMETHODIMP HandiCalcSettingsObject::Clone(_HandiCalcSettings** result) {
  return Answer([&] { *result = MakeSettings(settings_->Clone()).Detach(); }, result);
}

STDMETHODIMP HandiCalcSettingsObject::SetDefaults() {
  return Answer([&] { settings_->SetDefaults(); });
}

STDMETHODIMP HandiCalcSettingsObject::get_SamePartnerWeighting(short* result) {
  return Answer([&] { Return(result, settings_->SamePartnerWeighting()); }, result);
}

STDMETHODIMP HandiCalcSettingsObject::put_SamePartnerWeighting(short value) {
  return Answer([&] { settings_->SetSamePartnerWeighting(value); });
}

STDMETHODIMP HandiCalcSettingsObject::get_IncludesRegularPairAdjustment(VARIANT_BOOL* result) {
  return Answer([&] { Return(result, settings_->IncludesRegularPairAdjustment()); }, result);
}

STDMETHODIMP HandiCalcSettingsObject::AdjustRegularPair(double GrossHandicap, double* result) {
  return Answer([&] { Return(result, settings_->AdjustRegularPair(GrossHandicap)); }, result);
}

}  // namespace tavi::automation
