#include "automation/Conversion.h"

namespace tavi::automation {

std::optional<double> OptionalDouble(const VARIANT& value) {
  const VARIANT& given = Referred(value);
  if (IsMissing(given) || given.vt == VT_EMPTY) return std::nullopt;
  Variant number;
  if (FAILED(ConvertVariant(number.Address(), given, VT_R8))) {
    throw Error(ErrorNumber::TypeMismatch, "TaviMembership", "Type mismatch: a handicap has to be a number.");
  }
  return number.Get().dblVal;
}

}  // namespace tavi::automation
