#include "automation/Conversion.h"

#include <new>

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

SAFEARRAY* ArrayOf(const MatchList& list) {
  SAFEARRAY* array = ::SafeArrayCreateVector(VT_I4, list.LowerBound, static_cast<ULONG>(list.Numbers.size()));
  if (array == nullptr) throw std::bad_alloc();
  LONG index = list.LowerBound;
  for (std::int32_t number : list.Numbers) {
    ::SafeArrayPutElement(array, &index, &number);
    ++index;
  }
  return array;
}

}  // namespace tavi::automation
