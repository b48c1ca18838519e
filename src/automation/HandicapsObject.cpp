#include "automation/HandicapsObject.h"

#include "automation/Conversion.h"

namespace tavi::automation {

windows::ComPointer<_Handicaps> MakeHandicaps(const Handicaps& values) {
  return windows::ComPointer<_Handicaps>(new HandicapsObject(values));
}

STDMETHODIMP HandicapsObject::get_PartnershipHandicap(double* result) {
  return Answer([&] { Return(result, handicaps_.PartnershipHandicap()); }, result);
}

STDMETHODIMP HandicapsObject::put_PartnershipHandicap(double value) {
  return Answer([&] { handicaps_.SetPartnershipHandicap(value); });
}

STDMETHODIMP HandicapsObject::get_Player1Handicap(double* result) {
  return Answer([&] { Return(result, handicaps_.Player1Handicap()); }, result);
}

STDMETHODIMP HandicapsObject::put_Player1Handicap(double value) {
  return Answer([&] { handicaps_.SetPlayer1Handicap(value); });
}

STDMETHODIMP HandicapsObject::get_Player2Handicap(double* result) {
  return Answer([&] { Return(result, handicaps_.Player2Handicap()); }, result);
}

STDMETHODIMP HandicapsObject::put_Player2Handicap(double value) {
  return Answer([&] { handicaps_.SetPlayer2Handicap(value); });
}

}  // namespace tavi::automation
